// Sends recorded messages through a plug-in and hands what is learnt of each to those who asked:
//
//   inputs ─ LineReader → Worker: JSON → message → plug-in → outputs, log → consumers
//                                                                           events, figures, …
//
// The plug-in runs inside this process and is driven through its C functions from creation to
// destruction. Only the lines under way are kept, so memory depends on the batch size and on the
// longest line, not on how much there is to read.
#ifndef VLT_TOOLS_REPLAY_REPLAY_HPP
#define VLT_TOOLS_REPLAY_REPLAY_HPP

#include <ostream>
#include <vector>

#include "tools/options/exit_status.hpp"
#include "tools/options/replay_options.hpp"
#include "tools/replay/input/inputs.hpp"
#include "tools/replay/writing/terminal.hpp"

namespace com::velanto::connectivity::tools {

// Writes to `events` one line for each message that reaches the link in the chosen direction, and
// to `diagnostics` lines about what went wrong, the plug-in's log lines and, unless the run was
// broken off, one line with the figures. `terminal`, if there is one, is what `diagnostics` writes to
// and shows the progress. Returns one of EXIT_STATUSES. Does not throw.
// `colour`: explanations, which take the place of the events, may be in colours.
int replay(const ReplayOptions& options, const std::vector<input_t>& inputs, std::ostream& events,
           std::ostream& diagnostics, Terminal* terminal = nullptr, bool colour = false) noexcept;

} // namespace com::velanto::connectivity::tools

#endif
