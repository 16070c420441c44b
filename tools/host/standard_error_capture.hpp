// Keeps apart what a plug-in writes to standard error, past the log, and the tool's own output there.
// While a capture exists, descriptor 2 leads to a file in memory, which takes any amount of text and
// never makes the plug-in wait:
//
//   byte   0          1 …                  offset of descriptor 2
//          mapped:    text since the last  the plug-in
//          0 without  time                 writes here
//          text
//
// So to see that nothing was written takes no system call. A plug-in that ends the process, by a
// fault, abort or exit, loses no text: it is then shown as it is, but for characters that a terminal
// would obey. Only _exit and SIGKILL lose the text of their call.
#ifndef VLT_TOOLS_HOST_STANDARD_ERROR_CAPTURE_HPP
#define VLT_TOOLS_HOST_STANDARD_ERROR_CAPTURE_HPP

#include <csignal>
#include <cstddef>
#include <streambuf>
#include <string>
#include <vector>

namespace com::velanto::connectivity::tools {

// One at a time in a process. Without the system's help it has no effect.
class StandardErrorCapture {
 public:
  // Whether the plug-in gets one call at a time, so that text belongs to a call.
  enum class Calls { IN_TURN, AT_ONCE };

  explicit StandardErrorCapture(Calls calls);
  StandardErrorCapture(const StandardErrorCapture&) = delete;
  StandardErrorCapture& operator=(const StandardErrorCapture&) = delete;
  ~StandardErrorCapture();

  // The text since the last time, up to 1 MiB of it; a note tells how much more there was.
  [[nodiscard]] std::string take();

  // The same for the plug-in's call that has just returned. Nothing when there is no capture, or
  // calls come at once.
  [[nodiscard]] static std::string takeOfCall() {
    return current_ == nullptr || *current_->first_byte_ == '\0' ? std::string() : current_->take();
  }

  // Where standard error leads without a capture.
  [[nodiscard]] static int realDescriptor() noexcept;

 private:
  struct handler_t {
    int signal;
    struct sigaction before;
  };

  static void showAndDie(int signal) noexcept;
  static void showAtExit() noexcept;
  void showRest() noexcept;
  void catchSignals();
  void restore() noexcept;

  // Standard error is the process's, and signal handlers find the capture here.
  // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
  static inline StandardErrorCapture* current_ = nullptr;

  Calls calls_;
  int real_ = -1;   // a duplicate of the real standard error
  int memory_ = -1; // the file
  const volatile char* first_byte_;
  char* page_ = nullptr;    // the mapping
  long taken_ = 0;          // bytes of the file
  std::vector<char> stack_; // of the handlers: the plug-in may have used up its own
  stack_t stack_before_{};
  std::vector<handler_t> handlers_;
};

// The tool's own way to standard error, with or without a capture.
class StandardErrorBuffer final : public std::streambuf {
 protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize count) override;
};

} // namespace com::velanto::connectivity::tools

#endif
