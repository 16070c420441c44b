// Why a message was dropped, in a form that outlives the wording of the log: a code and the key
// concerned. Both are read out of the log text, by one table; a text that the table does not know
// is "other", never an error.
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
  std::string text; // the log line, byte for byte; empty when nothing was logged
};

// The reason in the lines that were logged for one message.
[[nodiscard]] drop_reason_t dropReasonOf(std::span<const log_line_t> log);

// The same for what stands behind the first part of such a line, "Error when transforming … : ".
[[nodiscard]] drop_reason_t dropReasonOfText(std::string_view what);

} // namespace com::velanto::connectivity::tools

#endif
