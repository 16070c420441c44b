// Hands out the messages of all inputs, a line each, one after the other, with their places. Opens
// an input when its turn comes. Keeps the remarks of recorders to itself and for the figures.
#ifndef VLT_TOOLS_REPLAY_INPUT_LINE_READER_HPP
#define VLT_TOOLS_REPLAY_INPUT_LINE_READER_HPP

#include <cstdint>
#include <deque>
#include <istream>
#include <memory>
#include <optional>
#include <streambuf>
#include <string>
#include <vector>

#include "tools/record/record.hpp"
#include "tools/replay/input/inputs.hpp"
#include "tools/replay/input/recordings.hpp"

namespace com::velanto::connectivity::tools {

struct reading_t {
  std::size_t times = 1; // readings of all inputs
  // Leaves out messages recorded in the other direction; nothing: none.
  std::optional<Direction> direction;
  bool follow = false; // waits at the end of the last input for more, and for its successor
  std::size_t max_line = std::size_t{64} << 20; // bytes; a longer line is malformed
};

class LineReader {
 public:
  // The reader must outlive every record that it fills.
  LineReader(const std::vector<input_t>& inputs, const reading_t& reading);

  // Fills the origin of the next line that is not blank into `record`, and for a line that is too
  // long, instead of its bytes, why it is malformed. False: there are no more, or
  // none yet, or the user has interrupted the wait for one. Throws ReplayError with EXIT_IO, and as
  // Recordings::take does.
  bool next(record_t& record);

  // After next() returned false: whether to try again, after wait().
  [[nodiscard]] bool hasMoreLater() const noexcept;
  // Returns when there may be more lines, or the user has interrupted the wait.
  static void wait() noexcept;

  // Whether the next line may be long in coming.
  [[nodiscard]] bool mayWait() const;

  // How much has been read, 0 to 1; nothing when there is no telling.
  [[nodiscard]] std::optional<double> fractionRead() const;

  [[nodiscard]] const Recordings& recordings() const noexcept { return recordings_; }
  // The remarks after the last record.
  [[nodiscard]] const std::string& lastRemarks() const noexcept { return remarks_; }

 private:
  [[nodiscard]] const input_t& input() const { return inputs_[current_ % inputs_.size()]; }
  bool nextOf(record_t& record);
  bool isMessage(record_t& record);
  bool nextLine(std::string& line);
  bool appendLine(std::string& line);
  bool takeRest(std::string& line);
  bool findMore();
  bool open();
  void close();
  [[nodiscard]] std::uintmax_t position() const; // in the current input, in bytes
  [[nodiscard]] std::string place() const;

  std::deque<input_t> inputs_; // in place, for their names are in records
  reading_t reading_;
  std::size_t current_ = 0;
  std::unique_ptr<std::istream> stream_;
  std::streambuf* raw_ = nullptr; // the source of the stream, which tells the position
  std::uintmax_t total_ = 0;      // bytes of all inputs, times the readings; 0: not known
  std::uintmax_t closed_ = 0;     // bytes of finished inputs
  std::uint64_t line_number_ = 0;
  std::uint64_t number_ = 0;
  Recordings recordings_;
  std::vector<char> piece_;
  bool is_too_long_ = false; // the current line: its bytes beyond the bound are left out
  std::string remarks_;      // since the last record
  std::string unfinished_;   // the line at the end of a followed input, so far
  bool in_recording_ = false;
  bool at_growing_end_ = false; // of the last, followed input
};

} // namespace com::velanto::connectivity::tools

#endif
