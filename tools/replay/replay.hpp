// Sends recorded messages through a plug-in and hands the results to the consumers that want them:
//
//   inputs ─ LineReader → Worker: JSON → message → plug-in → outputs, log → consumers
//                                                                           events, figures, …
//
// The plug-in runs inside this process, from creation to destruction through its C functions.
// Memory holds only the current lines, so it depends on the batch size and the longest line, not on
// the length of the input.
#ifndef VLT_TOOLS_REPLAY_REPLAY_HPP
#define VLT_TOOLS_REPLAY_REPLAY_HPP

#include <ostream>
#include <vector>

#include "tools/options/exit_status.hpp"
#include "tools/options/replay_options.hpp"
#include "tools/replay/input/inputs.hpp"
#include "tools/replay/writing/terminal.hpp"

namespace com::velanto::connectivity::tools {

// Writes to `events` one line for each message that reaches the link in the chosen direction.
// Writes to `diagnostics` problems, the plug-in's log lines and, at the end of a whole run, one
// line with the figures. `terminal`, if there is one, is the target of `diagnostics` and shows the
// progress; `screen` is that of `events`. Returns one of EXIT_STATUSES. Does not throw.
int replay(const ReplayOptions& options, const std::vector<input_t>& inputs, std::ostream& events,
           std::ostream& diagnostics, Terminal* terminal = nullptr,
           Screen screen = Screen::NONE) noexcept;

// Throws ReplayError with EXIT_USAGE when a file that the run writes has another use in it, such as
// being read. The run has the files of the options, the standard streams, and those given here; "-"
// is standard input.
void checkFiles(const ReplayOptions& options, const std::vector<std::string>& read,
                const std::vector<std::string>& written);

// Inside a handler: writes the exception to `diagnostics` and returns its exit status, one of
// EXIT_STATUSES. The exception must be a std::exception.
int reportError(std::ostream& diagnostics) noexcept;

} // namespace com::velanto::connectivity::tools

#endif
