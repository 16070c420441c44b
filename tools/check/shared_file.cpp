#include "tools/check/shared_file.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace com::velanto::connectivity::tools::check {

SharedFile::SharedFile() : descriptor_(memfd_create("check", MFD_CLOEXEC)) {
  if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "memfd_create");
  // A library may print and the check write at the same time, through two duplicates.
  fcntl(descriptor_, F_SETFL, O_APPEND);
}

SharedFile::~SharedFile() { close(descriptor_); }

std::string readWhole(int descriptor) {
  std::string content;
  std::array<char, 4096> piece{};
  ssize_t count = 0;
  while ((count = pread(descriptor, piece.data(), piece.size(),
                        static_cast<off_t>(content.size()))) > 0) {
    content.append(piece.data(), static_cast<std::size_t>(count));
  }
  return content;
}

} // namespace com::velanto::connectivity::tools::check
