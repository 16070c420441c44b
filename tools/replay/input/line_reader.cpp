#include "tools/replay/input/line_reader.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

#include "tools/options/exit_status.hpp"
#include "tools/replay/input/decompression.hpp"
#include "tools/replay/input/interruption.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t LINE_PIECE = std::size_t{64} << 10; // bytes to read at once

bool isBlank(std::string_view line) noexcept {
  return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

} // namespace

LineReader::LineReader(const std::vector<input_t>& inputs, const reading_t& reading)
    : inputs_(inputs.begin(), inputs.end()), reading_(reading), piece_(LINE_PIECE) {
  if (reading.follow) return;
  for (const input_t& input : inputs) {
    if (input.size == 0) {
      total_ = 0;
      return;
    }
    total_ += input.size * reading.times;
  }
}

bool LineReader::next(record_t& record) {
  record.remarks.clear();
  for (; current_ < inputs_.size() * reading_.times; ++current_) {
    if (!stream_ && !open()) {
      if (isInterrupted()) return false;
      continue; // the file has been deleted
    }
    if (nextOf(record)) return true;
    if (isInterrupted() || at_growing_end_) return false;
    close();
  }
  return false;
}

bool LineReader::hasMoreLater() const noexcept { return at_growing_end_ && !isInterrupted(); }

void LineReader::wait() noexcept { waitForFile(); }

// The next message of the current input.
bool LineReader::nextOf(record_t& record) {
  while (nextLine(record.line)) {
    ++line_number_;
    record.refused.clear();
    if (std::exchange(is_too_long_, false)) {
      record.line = {};
      record.recorded = {};
      record.refused = "longer than " + std::to_string(reading_.max_line >> 20U) +
                       " MiB; --max-line sets the bound";
    } else if (isBlank(record.line) || !isMessage(record)) {
      continue;
    }
    record.number = ++number_;
    record.file = &input().name;
    record.line_number = line_number_;
    record.pass = current_ / inputs_.size();
    record.run = recordings_.current() == nullptr ? nullptr : &recordings_.current()->run;
    record.remarks.swap(remarks_);
    return true;
  }
  return false;
}

// Whether the line is a message to replay, or no line of a recorder at all.
bool LineReader::isMessage(record_t& record) {
  if (Recordings::isRemark(record.line) && recordings_.take(record.line, place())) {
    in_recording_ = true;
    remarks_ += record.line + "\n";
    return false;
  }
  record.recorded = recordedIn(record.line);
  if (!record.recorded) return true;
  const bool wanted = !reading_.direction || directionOf(*record.recorded) == *reading_.direction;
  recordings_.takeMessage(wanted);
  return wanted;
}

bool LineReader::nextLine(std::string& line) {
  // A terminal would wait for more after its end.
  if (input().is_standard_input && !stream_->eof() && mayWait()) {
    waitForStandardInput();
    if (isInterrupted()) return false;
  }
  if (std::exchange(at_growing_end_, false)) stream_->clear();
  while (true) {
    line.clear(); // at the end of the stream, getline would leave the line before in it
    if (appendLine(line)) {
      if (!unfinished_.empty()) line.insert(0, std::exchange(unfinished_, {}));
      return true;
    }
    unfinished_ += line;
    if (!findMore()) return !at_growing_end_ && takeRest(line);
    stream_->clear();
  }
}

// Appends the bytes up to the next line end, as far as the line's bound allows. False: the input
// ends before one.
bool LineReader::appendLine(std::string& line) {
  while (true) {
    stream_->getline(piece_.data(), static_cast<std::streamsize>(piece_.size()));
    const bool ended = stream_->good(); // at a line end, which counts but is not in the piece
    const auto size = static_cast<std::size_t>(stream_->gcount()) - (ended ? 1 : 0);
    const std::size_t room =
        reading_.max_line - std::min(reading_.max_line, unfinished_.size() + line.size());
    is_too_long_ = is_too_long_ || size > room;
    line.append(piece_.data(), std::min(size, room));
    if (ended) return true;
    if (stream_->eof() || stream_->bad() || size == 0) return false;
    stream_->clear(); // the line goes on after the piece
  }
}

// At the end of the current input: whether to try again there at once, or later. Looks for the
// successor before the last attempt, so that it misses no line before the change.
bool LineReader::findMore() {
  const bool is_last = current_ + 1 == inputs_.size();
  if (!reading_.follow || !is_last || !input().successor || stream_->bad()) return false;
  if (std::optional<input_t> successor = input().successor(position())) {
    inputs_.push_back(std::move(*successor));
    return true;
  }
  at_growing_end_ = true;
  return false;
}

// The bytes after the last line end: a line, unless a recorder has not finished it.
bool LineReader::takeRest(std::string& line) {
  line = std::exchange(unfinished_, {});
  if (line.empty() || isInterrupted()) return false;
  if (!in_recording_ && !Recordings::isRemark(line)) return true;
  recordings_.takeRest(line.size());
  return false;
}

// False: the user has interrupted the wait for the first byte, which tells how to read the others,
// or the file is gone.
bool LineReader::open() {
  if (input().is_standard_input) waitForStandardInput();
  if (isInterrupted()) return false;
  std::unique_ptr<std::istream> raw = failingWith(EXIT_IO, input().open);
  if (raw == nullptr) {
    recordings_.skip(input().file);
    return false;
  }
  raw_ = raw->rdbuf();
  stream_ = decompressed(std::move(raw), input().name);
  line_number_ = 0;
  is_too_long_ = false;
  in_recording_ = input().file.number != 0;
  recordings_.begin(input().file, input().name);
  return true;
}

void LineReader::close() {
  if (stream_->bad()) throw ReplayError(EXIT_IO, input().name + ": cannot be read to its end");
  closed_ += input().size;
  stream_.reset();
}

bool LineReader::mayWait() const { return stream_ && stream_->rdbuf()->in_avail() <= 0; }

std::optional<double> LineReader::fractionRead() const {
  if (total_ == 0) return {};
  std::uintmax_t done = closed_;
  if (stream_) done += position();
  return static_cast<double>(done) / static_cast<double>(total_);
}

std::uintmax_t LineReader::position() const {
  const std::streamoff offset = raw_->pubseekoff(0, std::ios::cur, std::ios::in);
  return offset > 0 ? static_cast<std::uintmax_t>(offset) : 0;
}

std::string LineReader::place() const { return input().name + ":" + std::to_string(line_number_); }

} // namespace com::velanto::connectivity::tools
