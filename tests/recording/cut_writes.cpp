#include "tests/recording/cut_writes.hpp"

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <string_view>

namespace {

constexpr std::size_t LONGER_THAN_A_HEAD = 2000; // bytes

enum class Cut { NONE, HALF, DEATH };
std::atomic<Cut> cut = Cut::NONE;

} // namespace

namespace com::velanto::connectivity::test {

void dieInNextWrite() noexcept { cut = Cut::DEATH; }
void halveWrites() noexcept { cut = Cut::HALF; }

} // namespace com::velanto::connectivity::test

// The recorder's library finds this one first.
extern "C" [[gnu::visibility("default")]] ssize_t write(int descriptor, const void* bytes,
                                                        size_t size) {
  if (cut == Cut::NONE || size < LONGER_THAN_A_HEAD) {
    return syscall(SYS_write, descriptor, bytes, size);
  }
  const std::string_view lines(static_cast<const char*>(bytes), size);
  const std::size_t half = lines.find_last_not_of('\n', size / 2) + 1;
  const ssize_t written = syscall(SYS_write, descriptor, bytes, half);
  if (cut == Cut::DEATH) kill(getpid(), SIGKILL);
  return written;
}
