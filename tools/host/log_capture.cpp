#include "tools/host/log_capture.hpp"

#include <cstdio>
#include <utility>

#include "tools/host/host_library.hpp"

namespace com::velanto::connectivity::tools {

namespace {

// Where the host's library finds the list: its sink gets nothing that tells one call from another.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
thread_local std::vector<log_line_t>* lines_of_this_thread = nullptr;

void file(void* dropped, const char*, vlt_log_level_t level, const char* text) noexcept {
  if (lines_of_this_thread == nullptr) {
    if (dropped == nullptr) std::fprintf(stderr, "%s\n", text);
    return;
  }
  try {
    lines_of_this_thread->push_back({level, text});
  } catch (...) { // NOLINT(bugprone-empty-catch): no memory for the line; it is lost
  }
}

} // namespace

LogCapture::LogCapture(Unclaimed unclaimed) noexcept
    : works_(setLogSink(&file, unclaimed == Unclaimed::DROPPED ? this : nullptr)) {}
LogCapture::~LogCapture() { setLogSink(nullptr, nullptr); }

LogScope::LogScope(std::vector<log_line_t>& lines) noexcept
    : before_(std::exchange(lines_of_this_thread, &lines)) {}
LogScope::~LogScope() { lines_of_this_thread = before_; }

} // namespace com::velanto::connectivity::tools
