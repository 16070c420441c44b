// What is at fault in a message of which nothing came out, as far as running it again can tell:
//
//   (1) suspects   values that the log text repeats, values that stand under a name in its quotes,
//                  and, if there are none, all of them. What the text mentions in passing, such as
//                  which message it is about, is no suspect: it can be had without that part
//   (2) mending    a name in quotes that is not there is added; a suspect becomes the same in
//                  another kind or in other letters, or gets a value that the message has elsewhere
//   (3) proof      with it something comes out; or another reason is logged, and mending goes on
//                  from there. Only what ends with a message coming out counts
//
// A message that passes on as it went in proves nothing: without its path any of them does.
#ifndef VLT_TOOLS_EXPLAIN_FAULTS_HPP
#define VLT_TOOLS_EXPLAIN_FAULTS_HPP

#include <string>
#include <vector>

#include "tools/explain/probe.hpp"

namespace com::velanto::connectivity::tools {

struct fault_t {
  path_t path;
  std::string found;    // JSON of a leaf; empty: a list or map,
  bool missing = false; // or nothing at all
  std::string mended{}; // JSON of a value with which it goes on; empty: none was found
  bool operator==(const fault_t&) const = default;
};

struct blame_t {
  // In the order in which they are met; with all of them mended the message comes out.
  std::vector<fault_t> faults;
  std::vector<fault_t> suspects; // when there are no faults
};

// `base` is what the probe answers when nothing is changed; nothing came out.
[[nodiscard]] blame_t blameFor(Probe& probe, const answer_t& base);

} // namespace com::velanto::connectivity::tools

#endif
