// The faults of a dropped message, as far as running it again can tell:
//
//   (1) suspects   values that the log text repeats, values under a name in its quotes, and, if there
//                  are none, all of them. The text may name the message itself or repeat another part
//                  that it does not need: such a part is no suspect
//   (2) mending    adds a missing name from the quotes; turns a suspect into another kind, into other
//                  letters, or into a value that the message has elsewhere
//   (3) proof      with the change the message comes out; or another reason appears, and mending goes
//                  on from there. Only a way to a message that comes out counts
//
// A message that passes on as it went in proves nothing: without its path any of them does.
#ifndef VLT_TOOLS_EXPLAIN_FAULTS_HPP
#define VLT_TOOLS_EXPLAIN_FAULTS_HPP

#include <string>
#include <vector>

#include "tools/explain/probe.hpp"

namespace com::velanto::connectivity::tools {

struct faulty_place_t {
  path_t path;
  std::string found;    // JSON of a leaf; empty: a list or map,
  bool missing = false; // or nothing at all
  std::string mended{}; // JSON of a value with which it goes on; empty: none
  std::string defect{}; // the fault of the value, as far as the mended one tells
  bool operator==(const faulty_place_t&) const = default;
};

struct blame_t {
  // In the order of discovery; with all of them mended the message comes out.
  std::vector<faulty_place_t> faults;
  std::vector<faulty_place_t> suspects; // when there are no faults
};

// `base` is the probe's answer without a change; the message was dropped.
[[nodiscard]] blame_t blameFor(Probe& probe, const answer_t& base);

} // namespace com::velanto::connectivity::tools

#endif
