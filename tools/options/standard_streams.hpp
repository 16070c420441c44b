// The three standard streams of a tool.
#ifndef VLT_TOOLS_OPTIONS_STANDARD_STREAMS_HPP
#define VLT_TOOLS_OPTIONS_STANDARD_STREAMS_HPP

#include <fcntl.h>
#include <unistd.h>

namespace com::velanto::connectivity::tools {

// Opens streams that the caller has closed on the null device. Otherwise the first files that the
// tool opens would take their numbers, and get whatever it writes to the streams. Results for which
// there is no standard output are an error all the same: writing there fails. To be called before
// anything opens a file.
inline void openClosedStreams() noexcept {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) >= 0) continue;
    // The lowest free number is this one.
    static_cast<void>(open("/dev/null", descriptor == STDOUT_FILENO ? O_RDONLY : O_RDWR));
  }
}

} // namespace com::velanto::connectivity::tools

#endif
