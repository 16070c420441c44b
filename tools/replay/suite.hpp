// A folder of cases, each a recording NAME.ndjson and the golden file NAME.golden beside it.
#ifndef VLT_TOOLS_REPLAY_SUITE_HPP
#define VLT_TOOLS_REPLAY_SUITE_HPP

#include <ostream>

#include "tools/options/replay_options.hpp"

namespace com::velanto::connectivity::tools {

// Runs the cases of options.suite in the order of their names, each in a chain of its own with the
// other options, and reports each to `diagnostics`. Malformed lines are part of a case. A subfolder,
// a compressed case and a golden file without a case fail. Returns the largest exit status of a case. Throws ReplayError when there are no cases, or for a report that
// it cannot write.
int runSuite(const ReplayOptions& options, std::ostream& diagnostics);

} // namespace com::velanto::connectivity::tools

#endif
