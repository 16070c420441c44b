// One difference in a message that runs again, and other values for a value of unknown meaning:
//
//   integer, double   another number of the same kind
//   boolean           the other one
//   null              a number
//   text              the same with one character different: a digit or letter at an end of it or
//                     at the beginning of a word, so that formats stay valid
//   list, map         nothing: a change can only remove them
#ifndef VLT_TOOLS_EXPLAIN_CHANGE_HPP
#define VLT_TOOLS_EXPLAIN_CHANGE_HPP

#include <optional>
#include <vector>

#include "tools/explain/path.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::tools {

struct change_t {
  path_t path;
  std::optional<data_t> value; // nothing: removes the value

  [[nodiscard]] static change_t removal(const path_t& path) { return {path, {}}; }
};

[[nodiscard]] Message copyOf(const Message& message);

// The value at `path`; null when nothing is there.
[[nodiscard]] const data_t* valueAt(const Message& message, const path_t& path);

// Makes the change in `message`: replaces a value, or adds an entry to a map. Does nothing where
// there is no place for the value, or nothing to remove.
void apply(Message& message, const change_t& change);

// The promising changes first; none equals the value itself or another one.
[[nodiscard]] std::vector<data_t> changedValues(const data_t& value);

} // namespace com::velanto::connectivity::tools

#endif
