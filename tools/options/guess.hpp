// What a person may have meant who misspelt a word.
#ifndef VLT_TOOLS_OPTIONS_GUESS_HPP
#define VLT_TOOLS_OPTIONS_GUESS_HPP

#include <span>
#include <string>
#include <string_view>

namespace com::velanto::connectivity::tools {

// ", did you mean 'KNOWN'?" with the nearest word of `known`, without regard to case; the empty
// string when none is near.
[[nodiscard]] std::string guessFor(std::string_view word, std::span<const std::string_view> known);

} // namespace com::velanto::connectivity::tools

#endif
