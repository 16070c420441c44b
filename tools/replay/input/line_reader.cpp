#include "tools/replay/input/line_reader.hpp"

#include <string_view>

#include "tools/options/exit_status.hpp"
#include "tools/replay/input/decompression.hpp"
#include "tools/replay/input/interruption.hpp"

namespace com::velanto::connectivity::tools {

namespace {

bool isBlank(std::string_view line) noexcept {
  return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

} // namespace

LineReader::LineReader(const std::vector<input_t>& inputs, std::size_t times)
    : inputs_(inputs), times_(times) {
  for (const input_t& input : inputs) {
    if (input.size == 0) {
      total_ = 0;
      return;
    }
    total_ += input.size * times;
  }
}

bool LineReader::next(record_t& record) {
  for (; current_ < inputs_.size() * times_; ++current_) {
    if (!stream_ && !open()) return false;
    while (nextLine(record.line)) {
      ++line_number_;
      if (isBlank(record.line)) continue;
      record.number = ++number_;
      record.file = &inputs_[current_ % inputs_.size()].name;
      record.line_number = line_number_;
      record.pass = current_ / inputs_.size();
      return true;
    }
    if (isInterrupted()) return false;
    close();
  }
  return false;
}

bool LineReader::nextLine(std::string& line) {
  if (inputs_[current_ % inputs_.size()].is_standard_input && mayWait()) {
    waitForStandardInput();
    if (isInterrupted()) return false;
  }
  return static_cast<bool>(std::getline(*stream_, line));
}

// False: the user has interrupted the wait for the first byte, which tells how to read the others.
bool LineReader::open() {
  const input_t& input = inputs_[current_ % inputs_.size()];
  if (input.is_standard_input) waitForStandardInput();
  if (isInterrupted()) return false;
  std::unique_ptr<std::istream> raw = failingWith(EXIT_IO, input.open);
  raw_ = raw->rdbuf();
  stream_ = decompressed(std::move(raw), input.name);
  line_number_ = 0;
  return true;
}

void LineReader::close() {
  const input_t& input = inputs_[current_ % inputs_.size()];
  if (stream_->bad()) throw ReplayError(EXIT_IO, input.name + ": cannot be read to its end");
  closed_ += input.size;
  stream_.reset();
}

bool LineReader::mayWait() const { return stream_ && stream_->rdbuf()->in_avail() <= 0; }

std::optional<double> LineReader::fractionRead() const {
  if (total_ == 0) return {};
  std::uintmax_t done = closed_;
  if (stream_) {
    const std::streamoff offset = raw_->pubseekoff(0, std::ios::cur, std::ios::in);
    if (offset > 0) done += static_cast<std::uintmax_t>(offset);
  }
  return static_cast<double>(done) / static_cast<double>(total_);
}

} // namespace com::velanto::connectivity::tools
