#include "tools/replay/line_reader.hpp"

#include <string_view>

#include "tools/replay/exit_status.hpp"

namespace com::velanto::connectivity::tools {

namespace {

bool isBlank(std::string_view line) noexcept {
  return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

} // namespace

bool LineReader::next(record_t& record) {
  for (; current_ < inputs_.size(); ++current_) {
    if (!stream_) open();
    while (std::getline(*stream_, record.line)) {
      ++line_number_;
      if (isBlank(record.line)) continue;
      record.number = ++number_;
      record.file = &inputs_[current_].name;
      record.line_number = line_number_;
      return true;
    }
    if (stream_->bad()) {
      throw ReplayError(EXIT_IO, inputs_[current_].name + ": cannot be read to its end");
    }
    stream_.reset();
  }
  return false;
}

void LineReader::open() {
  stream_ = failingWith(EXIT_IO, inputs_[current_].open);
  line_number_ = 0;
}

bool LineReader::mayWait() const { return stream_ && stream_->rdbuf()->in_avail() <= 0; }

} // namespace com::velanto::connectivity::tools
