// The command line of the tool: a library, and the selection of checks.
#ifndef VLT_TOOLS_CHECK_COMMAND_LINE_HPP
#define VLT_TOOLS_CHECK_COMMAND_LINE_HPP

#include <ostream>

namespace com::velanto::connectivity::tools::check {

// Does what main's `arguments` ask for and returns the exit status. Results, lists and help go to
// `output`, in colours when `may_colour`; faults of the arguments go to `diagnostics`. Must run
// on the only thread of its process. Does not throw.
int runCheckPlugin(int count, const char* const* arguments, bool may_colour, std::ostream& output,
                   std::ostream& diagnostics) noexcept;

} // namespace com::velanto::connectivity::tools::check

#endif
