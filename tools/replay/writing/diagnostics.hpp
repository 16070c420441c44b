// Shows problems with single messages on standard error: the plug-in's log up to a level, and
// malformed lines.
//
//   plain   FILE:LINE: <category> text          json   {"at":"FILE:LINE","level":3,"text":"<category> …"}
//           FILE:LINE:COLUMN: reason                   {"at":"FILE:LINE","column":7,"malformed":"reason"}
//
// A line without a message, logged at the plug-in's creation or end, has no place; the place of a
// fault may have no column.
#ifndef VLT_TOOLS_REPLAY_WRITING_DIAGNOSTICS_HPP
#define VLT_TOOLS_REPLAY_WRITING_DIAGNOSTICS_HPP

#include <ostream>
#include <string>

#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

enum class LogFormat { PLAIN, JSON };

class Diagnostics final : public Consumer {
 public:
  // `out` must outlive this. Lines of a level above `level` are not shown.
  Diagnostics(std::ostream& out, vlt_log_level_t level, LogFormat format) noexcept
      : out_(out), level_(level), format_(format) {}

  void take(const record_t& record) override;
  void takeLog(std::span<const log_line_t> lines) override { show(lines, ""); }

 private:
  void show(std::span<const log_line_t> lines, const std::string& place);

  std::ostream& out_;
  vlt_log_level_t level_;
  LogFormat format_;
};

} // namespace com::velanto::connectivity::tools

#endif
