// What the tools need of the host's library beyond its interface, in a way that works with any of
// them, the stand-in or a real one:
//
//   lists            made with the host's own functions: a list of empty values is laid out here,
//                    copied by vlt_copy_data, and the copy, which is the host's, is filled in place
//   blocks, log      offered by the stand-in only, so looked up by name at run time; a tool that
//                    linked them could not be built against a real library
#ifndef VLT_TOOLS_HOST_LIBRARY_HPP
#define VLT_TOOLS_HOST_LIBRARY_HPP

#include <cstdint>
#include <optional>
#include <vector>

#include "host/types.h"
#include "value/data_t.hpp"

namespace com::velanto::connectivity::tools {

// A list of the host with `elements` in it, which are moved, never copied. Throws std::bad_alloc;
// the elements are then untouched.
[[nodiscard]] list_t makeList(std::vector<data_t>&& elements);

// Blocks that the library has handed out and not taken back; nothing when it does not count them.
[[nodiscard]] std::optional<std::int64_t> liveBlocks() noexcept;

// Sets the level of every log category. False: the library keeps its levels to itself, nothing
// changed.
bool setLogLevel(vlt_log_level_t level) noexcept;

// Takes one line of the log, without a line end; the texts are valid during the call only. May be
// called on several threads at once and must not throw.
using log_sink_t = void (*)(void* context, const char* category, vlt_log_level_t level,
                            const char* text);

// Sends the log to `sink` with `context`, which stays the caller's; null: back to where the library
// sends it by itself. False: the library keeps its log to itself, nothing changed.
bool setLogSink(log_sink_t sink, void* context) noexcept;

} // namespace com::velanto::connectivity::tools

#endif
