// The reason of a drop, in a form that outlives the wording of the log: a code and the key
// concerned. One table reads both out of the log text; a text that the table does not know is
// "other", never an error.
#ifndef VLT_TOOLS_RECORD_DROP_REASON_HPP
#define VLT_TOOLS_RECORD_DROP_REASON_HPP

#include <span>
#include <string>
#include <string_view>

#include "tools/host/log_capture.hpp"

namespace com::velanto::connectivity::tools {

struct drop_reason_t {
  const char* code; // one of a fixed set, such as "missing-key"
  std::string key;  // empty when the text names none
  std::string text; // the log line, byte for byte; empty without one
};

// The reason in the log lines of one message.
[[nodiscard]] drop_reason_t dropReasonOf(std::span<const log_line_t> log);

// The same for the rest of such a line after its first part, "Error when transforming … : ".
[[nodiscard]] drop_reason_t dropReasonOfText(std::string_view what);

} // namespace com::velanto::connectivity::tools

#endif
