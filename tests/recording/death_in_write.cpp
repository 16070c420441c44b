#include "tests/recording/death_in_write.hpp"

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <string_view>

namespace {

constexpr std::size_t LONGER_THAN_A_HEAD = 2000; // bytes

std::atomic<bool> dies_in_write = false;

} // namespace

namespace com::velanto::connectivity::test {

void dieInNextWrite() noexcept { dies_in_write = true; }

} // namespace com::velanto::connectivity::test

// The recorder's library finds this one first.
extern "C" [[gnu::visibility("default")]] ssize_t write(int descriptor, const void* bytes,
                                                        size_t size) {
  if (!dies_in_write || size < LONGER_THAN_A_HEAD) {
    return syscall(SYS_write, descriptor, bytes, size);
  }
  const std::string_view lines(static_cast<const char*>(bytes), size);
  syscall(SYS_write, descriptor, bytes, lines.find_last_not_of('\n', size / 2) + 1);
  kill(getpid(), SIGKILL);
  return -1;
}
