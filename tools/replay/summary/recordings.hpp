// The recordings of a run as part of its figures: what their recorders say about themselves, and
// how the comparison with recorded events came out.
#ifndef VLT_TOOLS_REPLAY_SUMMARY_RECORDINGS_HPP
#define VLT_TOOLS_REPLAY_SUMMARY_RECORDINGS_HPP

#include <optional>
#include <string>

#include "ndjson/json_line.hpp"
#include "tools/replay/comparing/recorded_events.hpp"
#include "tools/replay/input/recordings.hpp"

namespace com::velanto::connectivity::tools {

// Lines of at most 79 columns; none without recordings.
[[nodiscard]] std::string recordingsText(const Recordings& recordings,
                                         const std::optional<pairing_t>& pairing);

// The members "recordings", "files_read", "deleted_files", "headless_bytes" and, with a comparison,
// "events", which has the same members for the recording of events.
void writeRecordings(JsonLine& line, const Recordings& recordings,
                     const std::optional<pairing_t>& pairing);

} // namespace com::velanto::connectivity::tools

#endif
