// The command line of the tool: options and files.
#ifndef VLT_TOOLS_REPLAY_COMMAND_LINE_HPP
#define VLT_TOOLS_REPLAY_COMMAND_LINE_HPP

#include <ostream>

#include "tools/replay/writing/terminal.hpp"

namespace com::velanto::connectivity::tools {

// The readers of the streams.
struct display_t {
  bool progress = false; // standard error leads to a terminal that shows nothing else meanwhile
  Screen out = Screen::NONE;
  bool typed = false; // standard input comes from one
};

// Does what main's `arguments` ask for and returns the exit status: replays, or writes help or
// version to `out`, or names a fault of the arguments on `standard_error` (status 2). Does not throw.
int runReplay(int count, const char* const* arguments, std::ostream& out,
              std::ostream& standard_error, const display_t& display = {}) noexcept;

} // namespace com::velanto::connectivity::tools

#endif
