// One thing that is different in a message when it is run again, and what a value can be changed
// into without knowing what it means:
//
//   integer, double   another number of the same kind
//   boolean           the other one
//   null              a number
//   text              the same with one character different: a digit or letter at an end of it or
//                     at the beginning of a word, so that what is formatted stays so
//   list, map         nothing: whoever has one can only leave it out
#ifndef VLT_TOOLS_EXPLAIN_CHANGE_HPP
#define VLT_TOOLS_EXPLAIN_CHANGE_HPP

#include <optional>
#include <vector>

#include "tools/explain/path.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::tools {

struct change_t {
  path_t path;
  std::optional<data_t> value; // nothing: what stands there is left out

  [[nodiscard]] static change_t removal(const path_t& path) { return {path, {}}; }
};

[[nodiscard]] Message copyOf(const Message& message);

// The value at `path`; null when nothing is there.
[[nodiscard]] const data_t* valueAt(const Message& message, const path_t& path);

// Makes the change in `message`. A value is put where something is, or as a new entry into a map;
// where there is neither, and when nothing is there to be left out, nothing is changed.
void apply(Message& message, const change_t& change);

// The promising changes first; none equals the value itself or another one.
[[nodiscard]] std::vector<data_t> changedValues(const data_t& value);

} // namespace com::velanto::connectivity::tools

#endif
