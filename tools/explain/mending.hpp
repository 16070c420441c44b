// Values that could be right where one is wrong, made from the wrong one or found in the message;
// what is right is not known.
#ifndef VLT_TOOLS_EXPLAIN_MENDING_HPP
#define VLT_TOOLS_EXPLAIN_MENDING_HPP

#include <string>
#include <string_view>
#include <vector>

#include "tools/explain/change.hpp"
#include "tools/explain/trace.hpp"

namespace com::velanto::connectivity::tools {

// The same in another kind: a number as a text, a text as a number, a text in capitals or small
// letters or without blanks around it, an empty map.
[[nodiscard]] std::vector<data_t> mendedValues(const data_t& value);

// What could stand under a name that is missing: a text, a number, an empty map.
[[nodiscard]] std::vector<data_t> anyValues();

// Names that stand in quotes in `text`, each once.
[[nodiscard]] std::vector<std::string> quotedNames(std::string_view text);

// The numbers of the first leaves of `trace`, each value once.
[[nodiscard]] std::vector<std::size_t> differentLeaves(const Trace& trace);

} // namespace com::velanto::connectivity::tools

#endif
