// A file in memory that a process and its child write and read through one descriptor: unlike a
// pipe, it never fills, and it outlives whoever wrote it.
#ifndef VLT_TOOLS_CHECK_SHARED_FILE_HPP
#define VLT_TOOLS_CHECK_SHARED_FILE_HPP

#include <string>

namespace com::velanto::connectivity::tools::check {

class SharedFile {
 public:
  // Throws std::system_error.
  SharedFile();
  SharedFile(const SharedFile&) = delete;
  SharedFile& operator=(const SharedFile&) = delete;
  ~SharedFile();

  // Writes through it go to the file's end.
  [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

 private:
  int descriptor_;
};

// What stands in the file behind `descriptor`, from its beginning; where it is written next does
// not change. Empty when it cannot be read.
[[nodiscard]] std::string readWhole(int descriptor);

} // namespace com::velanto::connectivity::tools::check

#endif
