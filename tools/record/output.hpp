// A stream that must take all output, in large pieces.
#ifndef VLT_TOOLS_RECORD_OUTPUT_HPP
#define VLT_TOOLS_RECORD_OUTPUT_HPP

#include <ostream>
#include <string>
#include <string_view>

namespace com::velanto::connectivity::tools {

class Output {
 public:
  // `out` must outlive this; `complaint` begins the error text. Output without a flush is lost at
  // the end of its life.
  Output(std::ostream& out, std::string complaint) : out_(out), complaint_(std::move(complaint)) {}
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  ~Output() = default;

  // Throw ReplayError with EXIT_IO and the system's reason when the stream takes no more. A reader
  // that closes its pipe is no error; the stream then ignores further output.
  void write(std::string_view text);
  void flush();

  [[nodiscard]] bool closed() const noexcept { return closed_; }

 private:
  std::ostream& out_;
  std::string complaint_;
  std::string pending_;
  bool closed_ = false;
};

} // namespace com::velanto::connectivity::tools

#endif
