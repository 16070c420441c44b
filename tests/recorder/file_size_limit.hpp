// A limit for the sizes of files, which makes writing fail as a full disk does.
#ifndef VLT_TESTS_RECORDER_FILE_SIZE_LIMIT_HPP
#define VLT_TESTS_RECORDER_FILE_SIZE_LIMIT_HPP

#include <sys/resource.h>

#include <csignal>

namespace com::velanto::connectivity::test {

// The files of this process can be so large for the length of a test.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  void (*handler_)(int);
};

} // namespace com::velanto::connectivity::test

#endif
