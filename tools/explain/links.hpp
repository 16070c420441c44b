// Which value of a message has come out where, and which values of the outcome follow from it. Only
// what happens tells; nothing is inferred from names:
//
//   (1) blocks    a text, list or map that lies in the same block before and after has been moved;
//                 of lists and maps only those that hold the very same as before
//   (2) changes   the message is run again with one value changed, in each way that the value can
//                 be. Where the changed value shows up, the value has been carried there; what
//                 else differs is made from it. What has been moved is changed as well: a block
//                 can have been freed and used again for an equal text. Then the outcome does not
//                 follow the change, and all is gone through again without that block
//   (3) removals  of what came to nothing it is asked what comes of the message without it, and
//                 whether it comes out when another value is not there: then that has replaced it
#ifndef VLT_TOOLS_EXPLAIN_LINKS_HPP
#define VLT_TOOLS_EXPLAIN_LINKS_HPP

#include <cstddef>
#include <optional>
#include <vector>

#include "tools/explain/fates.hpp"
#include "tools/explain/probe.hpp"

namespace com::velanto::connectivity::tools {

// A value that went in: a leaf, or a list or map that was moved as a whole.
struct source_t {
  std::size_t node; // its number before
  bool moved = false;
  std::vector<std::size_t> carried{};       // numbers of the nodes after that are this value,
  std::vector<std::size_t> shaped{};        // and of the leaves after that are made from it
  bool followed = true;                     // false: the bound was reached before it was its turn
  bool steers = false;                      // other fields come out when it is changed
  Without without = Without::same;          // if it came to nothing
  std::optional<std::size_t> replaced_by{}; // number of the source that has its place

  [[nodiscard]] bool isLost() const noexcept {
    return followed && carried.empty() && shaped.empty();
  }
};

struct links_t {
  std::vector<source_t> sources; // in the order of their nodes; together all that went in
  std::vector<std::size_t> made; // leaves after that have not been moved

  [[nodiscard]] bool complete() const noexcept;
};

// `base` is what the probe answers when nothing is changed; something must have come out.
[[nodiscard]] links_t linksOf(Probe& probe, const answer_t& base);

} // namespace com::velanto::connectivity::tools

#endif
