#include "tools/host/standard_error_capture.hpp"

#include <fcntl.h>
#include <sanitizer/common_interface_defs.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string_view>

// A sanitizer's report is no text of the plug-in. Without a sanitizer there is no such function.
#pragma weak __sanitizer_set_report_fd

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t PAGE = 4096;
constexpr long MOST = 1L << 20;            // bytes of text at once
constexpr std::size_t STACK = 64UL * 1024; // bytes
constexpr char NO_TEXT = '\0';
constexpr std::array FATAL = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

// Writes all of it, unless the descriptor takes no more. Safe in a signal handler.
std::size_t writeAll(int descriptor, const char* text, std::size_t size) noexcept {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t written = write(descriptor, text + done, size - done);
    if (written < 0 && errno != EINTR) break;
    if (written > 0) done += static_cast<std::size_t>(written);
  }
  return done;
}

void sendReportsTo(int descriptor) noexcept {
  if (&__sanitizer_set_report_fd == nullptr) return;
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the function's own form
  __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor)));
}

} // namespace

StandardErrorCapture::StandardErrorCapture(Calls calls)
    : calls_(calls),
      memory_(memfd_create("standard error of a plug-in", MFD_CLOEXEC)),
      first_byte_(&NO_TEXT) {
  if (memory_ < 0 || ftruncate(memory_, PAGE) != 0) return;
  void* const page = mmap(nullptr, PAGE, PROT_READ | PROT_WRITE, MAP_SHARED, memory_, 0);
  if (page == MAP_FAILED) return;
  page_ = static_cast<char*>(page);
  real_ = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (real_ < 0) return;
  catchSignals();
  static const bool SHOWS_AT_EXIT = std::atexit(&showAtExit) == 0;
  static_cast<void>(SHOWS_AT_EXIT);
  if (calls == Calls::IN_TURN) first_byte_ = page_;
  sendReportsTo(real_);
  dup2(memory_, STDERR_FILENO);
  current_ = this;
}

StandardErrorCapture::~StandardErrorCapture() {
  if (current_ == this) restore();
  if (page_ != nullptr) munmap(page_, PAGE);
  if (real_ >= 0) close(real_);
  if (memory_ >= 0) close(memory_);
}

void StandardErrorCapture::restore() noexcept {
  dup2(real_, STDERR_FILENO);
  sendReportsTo(STDERR_FILENO);
  for (const handler_t& handler : handlers_) sigaction(handler.signal, &handler.before, nullptr);
  sigaltstack(&stack_before_, nullptr);
  current_ = nullptr;
}

void StandardErrorCapture::catchSignals() {
  stack_.resize(STACK);
  stack_t stack{};
  stack.ss_sp = stack_.data();
  stack.ss_size = stack_.size();
  sigaltstack(&stack, &stack_before_);
  handlers_.reserve(FATAL.size());
  for (const int signal : FATAL) {
    struct sigaction action {};
    action.sa_handler = &showAndDie;
    action.sa_flags = SA_ONSTACK | static_cast<int>(SA_RESETHAND);
    struct sigaction before {};
    sigaction(signal, &action, &before);
    handlers_.push_back({signal, before});
  }
}

std::string StandardErrorCapture::take() {
  if (current_ != this) return "";
  const long end = lseek(memory_, 0, SEEK_CUR); // the offset of descriptor 2, too
  std::string text(static_cast<std::size_t>(std::min(end - taken_, MOST)), '\0');
  const ssize_t size = pread(memory_, text.data(), text.size(), taken_);
  text.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
  if (end - taken_ > MOST) {
    text.append("\n").append(std::to_string(end - taken_ - MOST)).append(" bytes more\n");
  }
  if (calls_ == Calls::IN_TURN) {
    lseek(memory_, 0, SEEK_SET);
    if (end > MOST && ftruncate(memory_, PAGE) != 0) errno = 0; // the memory stays in use
    *page_ = '\0';
  } else {
    // Other threads may be writing: only the text before theirs may go.
    fallocate(memory_, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, taken_, end - taken_);
    taken_ = end;
  }
  return text;
}

int StandardErrorCapture::realDescriptor() noexcept {
  return current_ == nullptr ? STDERR_FILENO : current_->real_;
}

// Hands the signal on to whoever had it before: the system, or a sanitizer.
void StandardErrorCapture::showAndDie(int signal) noexcept {
  if (StandardErrorCapture* const capture = current_; capture != nullptr) {
    capture->showRest();
    capture->restore();
  }
  static_cast<void>(raise(signal));
}

void StandardErrorCapture::showAtExit() noexcept {
  if (current_ != nullptr) current_->showRest();
}

// Calls nothing that a signal handler may not call.
void StandardErrorCapture::showRest() noexcept {
  constexpr std::string_view ERASE_STATUS_LINE = "\r\x1B[K";
  const long end = lseek(memory_, 0, SEEK_CUR);
  if (end > taken_ && isatty(real_) == 1) {
    writeAll(real_, ERASE_STATUS_LINE.data(), ERASE_STATUS_LINE.size());
  }
  std::array<char, 1024> piece{};
  while (taken_ < end) {
    const std::size_t wanted = std::min(piece.size(), static_cast<std::size_t>(end - taken_));
    const ssize_t size = pread(memory_, piece.data(), wanted, taken_);
    if (size <= 0) return;
    for (char& c : piece) {
      if ((c < ' ' && c != '\n') || c == '\x7F') c = '?'; // all that is not ASCII is below 0
    }
    writeAll(real_, piece.data(), static_cast<std::size_t>(size));
    taken_ += size;
  }
}

StandardErrorBuffer::int_type StandardErrorBuffer::overflow(int_type c) {
  const char byte = traits_type::to_char_type(c);
  return xsputn(&byte, 1) == 1 ? traits_type::not_eof(c) : traits_type::eof();
}

std::streamsize StandardErrorBuffer::xsputn(const char* text, std::streamsize count) {
  return static_cast<std::streamsize>(
      writeAll(StandardErrorCapture::realDescriptor(), text, static_cast<std::size_t>(count)));
}

} // namespace com::velanto::connectivity::tools
