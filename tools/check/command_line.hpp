// The tool as it is called: a library, and which checks to run on it how.
#ifndef VLT_TOOLS_CHECK_COMMAND_LINE_HPP
#define VLT_TOOLS_CHECK_COMMAND_LINE_HPP

#include <ostream>

namespace com::velanto::connectivity::tools::check {

// Does what the arguments, those of main, ask for and returns the exit status. Results, lists and
// help go to `out`, which is coloured when `may_colour`; what is wrong with the arguments goes to
// `diagnostics`. Must be called by the only thread of its process. Does not throw.
int runCheckPlugin(int count, const char* const* arguments, bool may_colour, std::ostream& out,
                   std::ostream& diagnostics) noexcept;

} // namespace com::velanto::connectivity::tools::check

#endif
