// Standard error as a pipe that keeps writes apart, so that a test can tell one write from two.
#ifndef VLT_TESTS_STANDIN_STDERR_PACKETS_HPP
#define VLT_TESTS_STANDIN_STDERR_PACKETS_HPP

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <string>
#include <vector>

namespace standin::test {

// Redirects standard error from construction to `take` (or the end). A write of up to 4096 bytes is
// one packet; all of them together must fit the pipe (64 KiB).
class StderrPackets {
 public:
  StderrPackets() : saved_(::dup(STDERR_FILENO)) {
    if (::pipe2(pipe_.data(), O_DIRECT | O_NONBLOCK) == 0) ::dup2(pipe_[1], STDERR_FILENO);
  }
  StderrPackets(const StderrPackets&) = delete;
  StderrPackets& operator=(const StderrPackets&) = delete;
  ~StderrPackets() {
    restore();
    for (const int end : pipe_) ::close(end);
  }

  // The output, write by write.
  std::vector<std::string> take() {
    restore();
    std::vector<std::string> packets;
    std::array<char, 4096> packet;
    for (;;) {
      const ssize_t size = ::read(pipe_[0], packet.data(), packet.size());
      if (size <= 0) return packets;
      packets.emplace_back(packet.data(), static_cast<std::size_t>(size));
    }
  }

 private:
  void restore() {
    if (saved_ < 0) return;
    ::dup2(saved_, STDERR_FILENO);
    ::close(saved_);
    saved_ = -1;
  }

  std::array<int, 2> pipe_{-1, -1};
  int saved_;
};

} // namespace standin::test

#endif
