// Paths and values in few columns: neighbours in one word, long strings cut, numbers always whole.
#ifndef VLT_TOOLS_EXPLAIN_PHRASES_HPP
#define VLT_TOOLS_EXPLAIN_PHRASES_HPP

#include <cstddef>
#include <string>
#include <vector>

#include "tools/explain/fates.hpp"

namespace com::velanto::connectivity::tools {

// Columns of the widest phrase: with an arrow before it and a comma after it, it fits any line.
inline constexpr std::size_t PHRASE_WIDTH = 61;

// The path and, of a leaf, the value. Cuts a string at its end, a path at its beginning.
[[nodiscard]] std::string phraseOf(const place_t& place);
// The value alone.
[[nodiscard]] std::string valuePhraseOf(const place_t& place);

// Several names below one path: source.{name,self}.
[[nodiscard]] std::string bracesOf(const path_t& above, const std::vector<std::string>& names);

// The paths, which must be sorted, with neighbours in one phrase: source.{name,self}, list[2…5].
[[nodiscard]] std::vector<std::string> pathPhrasesOf(const std::vector<path_t>& paths);

} // namespace com::velanto::connectivity::tools

#endif
