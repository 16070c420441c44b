#include "tools/replay/input/interruption.hpp"

#include <poll.h>
#include <unistd.h>

#include <csignal>

namespace com::velanto::connectivity::tools {

namespace {

// A signal handler reaches nothing else.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
volatile std::sig_atomic_t interrupted = 0;

void note(int) noexcept { interrupted = 1; }

constexpr int MILLISECONDS = 100; // a signal just before a call of poll does not end it

} // namespace

void catchInterruption() noexcept {
  struct sigaction action {};
  action.sa_handler = &note;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool isInterrupted() noexcept { return interrupted != 0; }

void waitForStandardInput() noexcept {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  while (!isInterrupted() && poll(&input, 1, MILLISECONDS) == 0) {
  }
}

void waitForFile() noexcept { poll(nullptr, 0, MILLISECONDS); }

} // namespace com::velanto::connectivity::tools
