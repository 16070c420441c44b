// The functions that the tools use of the host's library beyond its interface: counts of blocks and
// the log. The stand-in alone has these, so the tools look them up by name at run time; a tool that
// linked them could not be built against a real library.
#ifndef VLT_TOOLS_HOST_HOST_LIBRARY_HPP
#define VLT_TOOLS_HOST_HOST_LIBRARY_HPP

#include <cstdint>
#include <optional>

#include "host/types.h"

namespace com::velanto::connectivity::tools {

// Blocks that the library has handed out and not taken back; nothing when it does not count them.
[[nodiscard]] std::optional<std::int64_t> liveBlocks() noexcept;

// Sets the level of every log category. False: the library keeps its levels to itself, nothing
// changed.
bool setLogLevel(vlt_log_level_t level) noexcept;

// Takes one line of the log, without a line end; the strings are valid during the call only.
// Several threads may call it at once; it must not throw.
using log_sink_t = void (*)(void* context, const char* category, vlt_log_level_t level,
                            const char* text);

// Sends the log to `sink` with `context`, which stays the caller's; null: back to where the library
// sends it by itself. False: the library keeps its log to itself, nothing changed.
bool setLogSink(log_sink_t sink, void* context) noexcept;

} // namespace com::velanto::connectivity::tools

#endif
