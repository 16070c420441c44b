#include "ndjson/kept_texts.hpp"

#include <mutex>
#include <unordered_set>

namespace com::velanto::connectivity {

const char* keepText(const std::string& text) {
  static std::mutex mutex;
  // Never freed: global objects may hold messages, too.
  // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): within the function only
  static auto& texts = *new std::unordered_set<std::string>;
  const std::lock_guard lock(mutex);
  return texts.insert(text).first->c_str();
}

} // namespace com::velanto::connectivity
