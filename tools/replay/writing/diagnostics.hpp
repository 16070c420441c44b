// Shows problems with single messages on standard error: the plug-in's log up to a level, and
// malformed lines.
#ifndef VLT_TOOLS_REPLAY_WRITING_DIAGNOSTICS_HPP
#define VLT_TOOLS_REPLAY_WRITING_DIAGNOSTICS_HPP

#include <ostream>

#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

class Diagnostics final : public Consumer {
 public:
  // `out` must outlive this. Lines of a level above `level` are not shown.
  Diagnostics(std::ostream& out, vlt_log_level_t level) noexcept : out_(out), level_(level) {}

  void take(const record_t& record) override;
  void takeLog(std::span<const log_line_t> lines) override;

 private:
  std::ostream& out_;
  vlt_log_level_t level_;
};

} // namespace com::velanto::connectivity::tools

#endif
