// Writes the messages that did not reach the host to a file that is input again: the line as it was
// read, with one more member before its last brace, which the reader ignores:
//
//   {…,"dropped":{"file":"in.ndjson","line":6,"reason":"missing-key","key":"text","text":"<…> …"}}
//
// Without that member and the comma before it, the line is byte for byte what was read. A line that
// has such a member already, since it comes from such a file, gets a new one instead. Malformed
// lines are not written: they are no messages, and the file would not be input any more.
#ifndef VLT_TOOLS_REPLAY_WRITING_DEAD_LETTERS_HPP
#define VLT_TOOLS_REPLAY_WRITING_DEAD_LETTERS_HPP

#include <fstream>
#include <string>

#include "tools/record/output.hpp"
#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

class DeadLetters final : public Consumer {
 public:
  // Makes the file anew. Throws ReplayError with EXIT_IO.
  explicit DeadLetters(const std::string& path);

  void take(const record_t& record) override;
  void pause() override { out_.flush(); }

 private:
  std::ofstream file_;
  Output out_;
};

// The line of `record`, which was dropped, without its line end.
[[nodiscard]] std::string deadLetterOf(const record_t& record);

} // namespace com::velanto::connectivity::tools

#endif
