// The tool as it is called: options and files from the command line.
#ifndef VLT_TOOLS_REPLAY_COMMAND_LINE_HPP
#define VLT_TOOLS_REPLAY_COMMAND_LINE_HPP

#include <ostream>

namespace com::velanto::connectivity::tools {

// How the streams are looked at.
struct display_t {
  bool progress = false; // `diagnostics` leads to a terminal that shows nothing else meanwhile
  bool colour = false;   // `out` leads to one that may show colours
};

// Does what the arguments ask for and returns the exit status: replays, or writes help or version
// to `out`, or says on `diagnostics` what is wrong with them (status 2). `arguments` are those of
// main. Does not throw.
int runReplay(int count, const char* const* arguments, std::ostream& out, std::ostream& diagnostics,
              const display_t& display = {}) noexcept;

} // namespace com::velanto::connectivity::tools

#endif
