// Writes the few forms of JSON that made-up notifications need; strings contain nothing to escape.
#ifndef VLT_BENCH_JSON_TEXT_HPP
#define VLT_BENCH_JSON_TEXT_HPP

#include <string>
#include <string_view>
#include <utility>

namespace com::velanto::connectivity::bench {

[[nodiscard]] inline std::string quoted(std::string_view text) {
  return '"' + std::string(text) + '"';
}

// An object that grows member by member and is complete JSON at any time.
class JsonObject {
 public:
  // `json` is the value's JSON.
  JsonObject& member(std::string_view key, std::string_view json) {
    if (!members_.empty()) members_ += ',';
    members_ += quoted(key) + ':';
    members_ += json;
    return *this;
  }
  JsonObject& text(std::string_view key, std::string_view content) {
    return member(key, quoted(content));
  }
  [[nodiscard]] std::string str() const { return '{' + members_ + '}'; }

 private:
  std::string members_;
};

} // namespace com::velanto::connectivity::bench

#endif
