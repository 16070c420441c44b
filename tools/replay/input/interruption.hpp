// Ctrl-C takes effect between two messages, so that a run ends with its figures.
#ifndef VLT_TOOLS_REPLAY_INPUT_INTERRUPTION_HPP
#define VLT_TOOLS_REPLAY_INPUT_INTERRUPTION_HPP

namespace com::velanto::connectivity::tools {

// From now on the first SIGINT or SIGTERM only sets the wish; the second ends the process as usual.
void catchInterruption() noexcept;

[[nodiscard]] bool isInterrupted() noexcept;

// Returns as soon as standard input has something to read or is at its end, or the wish is set.
void waitForStandardInput() noexcept;

// Returns after a tenth of a second, time enough for a file to grow, or as soon as the wish is set.
void waitForFile() noexcept;

} // namespace com::velanto::connectivity::tools

#endif
