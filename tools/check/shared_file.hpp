// A file in memory that a process and its child write and read through one descriptor: unlike a
// pipe, it never fills, and it outlives its writers.
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

// The content of the file of `descriptor`, from its beginning; the position for writes does not
// change. Empty when reading fails.
[[nodiscard]] std::string readWhole(int descriptor);

} // namespace com::velanto::connectivity::tools::check

#endif
