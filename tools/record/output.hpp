// A stream that must take all that is written to it, in large pieces.
#ifndef VLT_TOOLS_RECORD_OUTPUT_HPP
#define VLT_TOOLS_RECORD_OUTPUT_HPP

#include <fstream>
#include <ostream>
#include <string>
#include <string_view>

namespace com::velanto::connectivity::tools {

class Output {
 public:
  // `out` must outlive this; `complaint` begins the error text. What is not flushed at the end of
  // its life is lost.
  Output(std::ostream& out, std::string complaint) : out_(out), complaint_(std::move(complaint)) {}
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  ~Output() = default;

  // Throw ReplayError with EXIT_IO and the system's reason when the stream takes no more, except for
  // a pipe that its reader has closed: that is no error, and nothing is written from then on.
  void write(std::string_view text);
  void flush();

  [[nodiscard]] bool closed() const noexcept { return closed_; }

 private:
  std::ostream& out_;
  std::string complaint_;
  std::string pending_;
  bool closed_ = false;
};

// Makes the file anew. Throws ReplayError "PATH: reason" with EXIT_IO.
[[nodiscard]] std::ofstream openForWriting(const std::string& path);

} // namespace com::velanto::connectivity::tools

#endif
