// The fates of the fields of one message. Each leaf of the input is within one `from` of one row,
// and each leaf of the outcome within one `to`; both include all values below them. `with` only
// refers to fields whose own fate another row tells.
//
//   unchanged   the same value at the same place
//   renamed     the same value under another name, or at the top
//   gathered    the same value in a list or map that the plug-in has put together
//   copied      one more copy of a field (with) that has come out elsewhere, too
//   converted   a value that follows from one or several fields, but is none of them
//   replaced    vanished, and another value (with, or to) has its place
//   added       a value that stays the same when any field changes
//   lost        vanished
//   unknown     not followed: the message is too large to run again for each field
#ifndef VLT_TOOLS_EXPLAIN_FATES_HPP
#define VLT_TOOLS_EXPLAIN_FATES_HPP

#include <cstddef>
#include <string>
#include <vector>

#include "tools/explain/path.hpp"

namespace com::velanto::connectivity::tools {

enum class Fate { UNCHANGED, RENAMED, GATHERED, COPIED, CONVERTED, REPLACED, ADDED, LOST, UNKNOWN };

[[nodiscard]] const char* nameOf(Fate fate) noexcept;

// The result of the message without a lost field: the same, nothing, the message as it went in, or
// other fields.
enum class Without { SAME, DROPPED, PASSED, DIFFERENT };

[[nodiscard]] const char* nameOf(Without without) noexcept;

struct place_t {
  path_t path;
  std::string json; // of a leaf; empty for a list or map, with all that is in it
  bool operator==(const place_t&) const = default;
};

struct row_t {
  Fate fate;
  std::vector<place_t> from;
  std::vector<place_t> to;
  std::vector<place_t> with;
  bool new_block = false;          // unchanged, renamed, gathered: a copied string
  Without without = Without::SAME; // lost and replaced
  bool operator==(const row_t&) const = default;
};

} // namespace com::velanto::connectivity::tools

#endif
