#include "ndjson/json_text.hpp"

#include <cstddef>

#include "ndjson/json_memory.hpp"
#include "ndjson/utf8.hpp"

namespace com::velanto::connectivity {

std::string asUtf8(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t length = lengthOfCharacter(text);
    if (length == 0) {
      result += "\xEF\xBF\xBD";
      text.remove_prefix(1);
    } else {
      result += text.substr(0, length);
      text.remove_prefix(length);
    }
  }
  return result;
}

void appendJsonText(std::string& out, std::string_view text) {
  const std::size_t begin = out.size();
  out.resize(begin + 6 * text.size() + 2 + JsonMemory::SLACK); // room for only escapes
  JsonMemory memory(&out[begin], out.data() + out.size());
  const bool is_utf8 = memory.text(text);
  out.resize(static_cast<std::size_t>(memory.position() - out.data()));
  if (!is_utf8) appendJsonText(out, asUtf8(text));
}

} // namespace com::velanto::connectivity
