// Which value of a message has come out where, and which values of the outcome follow from it. Only
// observation tells; names prove nothing:
//
//   (1) blocks    a string, list or map in the same block before and after has moved; lists and maps
//                 only with their very same contents
//   (2) changes   run the message again with one value changed, in each possible way. The value has
//                 come out where the change shows up; other differences are made from it. Values that
//                 moved change as well: a plug-in can free a block and use it again for an equal
//                 string. Then the outcome does not follow the change, and it starts again without
//                 that block
//   (3) removals  run the message without a lost field; and without another value, to see whether the
//                 lost one then comes out: the other value has replaced it
#ifndef VLT_TOOLS_EXPLAIN_LINKS_HPP
#define VLT_TOOLS_EXPLAIN_LINKS_HPP

#include <cstddef>
#include <optional>
#include <vector>

#include "tools/explain/fates.hpp"
#include "tools/explain/probe.hpp"

namespace com::velanto::connectivity::tools {

// A value that went in: a leaf, or a list or map that moved as a whole.
struct source_t {
  std::size_t node; // its number before
  bool moved = false;
  std::vector<std::size_t> carried{};       // numbers of the nodes after that are this value,
  std::vector<std::size_t> shaped{};        // and of the leaves after that follow from it
  bool followed = true;                     // false: the bound came before its turn
  bool steers = false;                      // other fields come out when it changes
  Without without = Without::SAME;          // if it came to nothing
  std::optional<std::size_t> replaced_by{}; // number of the source that has its place

  [[nodiscard]] bool isLost() const noexcept {
    return followed && carried.empty() && shaped.empty();
  }
};

struct links_t {
  std::vector<source_t> sources; // in the order of their nodes; together all that went in
  std::vector<std::size_t> made; // leaves after that have not moved

  [[nodiscard]] bool complete() const noexcept;
};

// `base` is the probe's answer without a change; something must have come out.
[[nodiscard]] links_t linksOf(Probe& probe, const answer_t& base);

} // namespace com::velanto::connectivity::tools

#endif
