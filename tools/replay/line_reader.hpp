// Hands out the lines of all inputs, one after the other, with where each comes from. An input is
// opened when its turn comes.
#ifndef VLT_TOOLS_REPLAY_LINE_READER_HPP
#define VLT_TOOLS_REPLAY_LINE_READER_HPP

#include <cstdint>
#include <istream>
#include <memory>
#include <vector>

#include "tools/replay/inputs.hpp"
#include "tools/replay/record.hpp"

namespace com::velanto::connectivity::tools {

class LineReader {
 public:
  // `inputs` must outlive the reader and every record that it fills.
  explicit LineReader(const std::vector<input_t>& inputs) noexcept : inputs_(inputs) {}

  // Fills the origin of the next line that is not blank into `record`. False: there are no more.
  // Throws ReplayError with EXIT_IO.
  bool next(record_t& record);

  // Whether the next line may be long in coming.
  [[nodiscard]] bool mayWait() const;

 private:
  void open();

  const std::vector<input_t>& inputs_;
  std::size_t current_ = 0;
  std::unique_ptr<std::istream> stream_;
  std::uint64_t line_number_ = 0;
  std::uint64_t number_ = 0;
};

} // namespace com::velanto::connectivity::tools

#endif
