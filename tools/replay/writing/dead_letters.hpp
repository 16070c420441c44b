// Writes the messages that did not reach the host to a file that is input again: the line as read,
// with one more member before its last brace, which the reader ignores:
//
//   {…,"dropped":{"file":"in.ndjson","line":6,"reason":"missing-key","key":"text","text":"<…> …"}}
//
// Without that member and the comma before it, the line is byte for byte the input. A line from
// such a file gets a new member instead of the old one. Malformed lines are no messages, so they
// stay out of the file, which would not be input any more.
#ifndef VLT_TOOLS_REPLAY_WRITING_DEAD_LETTERS_HPP
#define VLT_TOOLS_REPLAY_WRITING_DEAD_LETTERS_HPP

#include <string>

#include "tools/record/output_file.hpp"
#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

class DeadLetters final : public Consumer {
 public:
  // Throws ReplayError with EXIT_IO.
  explicit DeadLetters(const std::string& path) : file_(path) {}

  void take(const record_t& record) override;
  void pause() override { file_.flush(); }
  void commit() override { file_.commit(); }

 private:
  OutputFile file_;
};

// The line of `record`, a dropped one, without its line end.
[[nodiscard]] std::string deadLetterOf(const record_t& record);

} // namespace com::velanto::connectivity::tools

#endif
