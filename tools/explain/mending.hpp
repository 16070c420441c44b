// Candidates for the place of a wrong value, made from it or found in the message; nobody knows the
// right one.
#ifndef VLT_TOOLS_EXPLAIN_MENDING_HPP
#define VLT_TOOLS_EXPLAIN_MENDING_HPP

#include <string>
#include <string_view>
#include <vector>

#include "tools/explain/change.hpp"
#include "tools/explain/trace.hpp"

namespace com::velanto::connectivity::tools {

struct mended_t {
  data_t value;
  std::string defect; // of the wrong value, if this value has all of it but that; otherwise empty
};

// The same in another kind: a number as a string, a string as a number, a string in capitals or
// small letters or without blanks around it, a timestamp with all its parts, an empty map.
[[nodiscard]] std::vector<mended_t> mendedValues(const data_t& value);

// Candidates for a missing name: a string, a number, an empty map, a timestamp.
[[nodiscard]] std::vector<data_t> anyValues();

// Names in quotes in `text`, each once.
[[nodiscard]] std::vector<std::string> quotedNames(std::string_view text);

// The numbers of the first leaves of `trace`, each value once.
[[nodiscard]] std::vector<std::size_t> differentLeaves(const Trace& trace);

} // namespace com::velanto::connectivity::tools

#endif
