// Hands out the lines of all inputs, one after the other, each with its place. Opens an input when
// its turn comes.
#ifndef VLT_TOOLS_REPLAY_INPUT_LINE_READER_HPP
#define VLT_TOOLS_REPLAY_INPUT_LINE_READER_HPP

#include <cstdint>
#include <istream>
#include <memory>
#include <optional>
#include <streambuf>
#include <string>
#include <vector>

#include "tools/record/record.hpp"
#include "tools/replay/input/inputs.hpp"

namespace com::velanto::connectivity::tools {

class LineReader {
 public:
  // `inputs` must outlive the reader and every record that it fills. Reads all of them `times`
  // times.
  LineReader(const std::vector<input_t>& inputs, std::size_t times);

  // Fills the origin of the next line that is not blank into `record`. False: there are no more, or
  // the user has interrupted the wait for one. Throws ReplayError with EXIT_IO.
  bool next(record_t& record);

  // Whether the next line may be long in coming.
  [[nodiscard]] bool mayWait() const;

  // How much has been read, 0 to 1; nothing when there is no telling.
  [[nodiscard]] std::optional<double> fractionRead() const;

 private:
  bool nextLine(std::string& line);
  bool open();
  void close();

  const std::vector<input_t>& inputs_;
  std::size_t times_;
  std::size_t current_ = 0;
  std::unique_ptr<std::istream> stream_;
  std::streambuf* raw_ = nullptr; // the source of the stream, which tells the position
  std::uintmax_t total_ = 0;      // bytes of all inputs, times the readings; 0: not known
  std::uintmax_t closed_ = 0;     // bytes of finished inputs
  std::uint64_t line_number_ = 0;
  std::uint64_t number_ = 0;
};

} // namespace com::velanto::connectivity::tools

#endif
