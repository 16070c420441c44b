// Assigns log lines to calls of the plug-in: while a capture exists, the lines of a thread go to
// the list that the thread has named. It cannot capture the log of a host library without a sink;
// that library writes its lines itself.
#ifndef VLT_TOOLS_HOST_LOG_CAPTURE_HPP
#define VLT_TOOLS_HOST_LOG_CAPTURE_HPP

#include <string>
#include <vector>

#include "host/types.h"

namespace com::velanto::connectivity::tools {

// The level of the line with the reason of a drop. Failures have lower levels, traces higher ones.
inline constexpr vlt_log_level_t DROPPED_LEVEL = 3;

struct log_line_t {
  vlt_log_level_t level;
  std::string text; // with the prefix in angle brackets, without a line end
  bool operator==(const log_line_t&) const = default;
};

// One at a time in a process.
class LogCapture {
 public:
  // The target of the lines of a thread without a list: standard error or nothing.
  enum class Unclaimed { PRINTED, DROPPED };

  explicit LogCapture(Unclaimed unclaimed = Unclaimed::PRINTED) noexcept;
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;
  ~LogCapture();

  // False: the host library does not hand out its lines.
  [[nodiscard]] bool works() const noexcept { return works_; }

 private:
  bool works_;
};

// While it exists, it adds the lines of this thread to `lines`.
class LogScope {
 public:
  explicit LogScope(std::vector<log_line_t>& lines) noexcept;
  LogScope(const LogScope&) = delete;
  LogScope& operator=(const LogScope&) = delete;
  ~LogScope();

 private:
  std::vector<log_line_t>* before_;
};

} // namespace com::velanto::connectivity::tools

#endif
