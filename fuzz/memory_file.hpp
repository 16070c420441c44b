// An input as a file, for readers that open a path: in memory, since a disk would be the slowest
// part of the run.
#ifndef VLT_FUZZ_MEMORY_FILE_HPP
#define VLT_FUZZ_MEMORY_FILE_HPP

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "fuzz/finding.hpp"

namespace com::velanto::connectivity::fuzz {

class MemoryFile {
 public:
  MemoryFile() : descriptor_(memfd_create("input", MFD_CLOEXEC)) {
    require(descriptor_ >= 0, "the system has files in memory");
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { close(descriptor_); }

  // Takes the place of the content so far.
  void write(std::string_view content) const {
    require(ftruncate(descriptor_, 0) == 0 && pwrite(descriptor_, content.data(), content.size(),
                                                     0) == static_cast<ssize_t>(content.size()),
            "a file in memory takes its content");
  }
  [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

} // namespace com::velanto::connectivity::fuzz

#endif
