#include "recorder/recording_buffer.hpp"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <utility>

namespace com::velanto::connectivity::recorder {

namespace {

// Less room than this is none: most lines are longer.
constexpr std::size_t LEAST_ROOM = 1024;

} // namespace

void Waker::wake() noexcept {
  if (is_awake_.exchange(1) == 0) syscall(SYS_futex, &is_awake_, FUTEX_WAKE_PRIVATE, 1);
}

// The kernel's own operation: it measures the time by the clock that nobody sets.
void Waker::sleep(unsigned milliseconds) noexcept {
  const timespec most{milliseconds / 1000, static_cast<long>(milliseconds % 1000) * 1'000'000};
  syscall(SYS_futex, &is_awake_, FUTEX_WAIT_PRIVATE, 0, &most);
  is_awake_.store(0);
}

RecordingBuffer::RecordingBuffer(const FieldSet& omitted, std::size_t longest_line)
    : longest_line_(std::min(longest_line, CAPACITY)),
      writer_(omitted),
      memory_(new char[2 * CAPACITY]()),
      half_(memory_.get()) {}

void RecordingBuffer::add(const batch_t& batch, const Filter& filter) noexcept {
  remark_t remark{timeNow(), 0, batch.number, 0, batch.messages.size(), batch.direction};
  const std::lock_guard guard(lock_);
  remark.number = counted_ + skipped_.load(std::memory_order_relaxed);
  counted_ += batch.messages.size();
  for (const Message& message : batch.messages) {
    ++remark.number;
    if (state() == State::CLOSED) {
      lose(remark.number, "stopped");
    } else if (state() == State::OFF || !filter.takes(message)) {
      ++filtered_;
    } else if (append(message, remark) && --left_ == 0) {
      state_ = State::OFF;
    }
    ++remark.place;
  }
  if (used_ > CAPACITY / 2 || (gap_.lost != 0 && state() == State::ON)) waker_.wake();
}

// Writes the line after that of a gap, if there is one, or lengthens the gap.
bool RecordingBuffer::append(const Message& message, const remark_t& remark) noexcept {
  char gap[GAP_SIZE];
  const std::size_t gap_size =
      gap_.lost == 0 ? 0 : static_cast<std::size_t>(writeGap(gap, gap_) - gap);
  char* const begin = half_ + used_;
  const std::size_t room = CAPACITY - GAP_SIZE - used_; // a gap can always follow
  char* at = nullptr;
  if (room >= LEAST_ROOM) {
    at = writeRemark(begin + gap_size, remark);
    at = writer_.write(message, at, std::min(begin + room, begin + gap_size + longest_line_));
  }
  if (at == nullptr) {
    const bool is_too_deep = room >= LEAST_ROOM && writer_.isTooDeep();
    const bool is_cramped = room < longest_line_ + gap_size && !is_too_deep;
    lose(remark.number, is_cramped ? "buffer" : "message");
    return false;
  }
  std::memcpy(begin, gap, gap_size);
  *at++ = '}';
  *at++ = '\n';
  used_ = static_cast<std::size_t>(at - half_);
  gap_ = {};
  return true;
}

void RecordingBuffer::lose(std::uint64_t number, const char* reason) noexcept {
  gap_.add({number, number, 1, reason});
}

void RecordingBuffer::begin(std::uint64_t most_messages) noexcept {
  const std::lock_guard guard(lock_);
  left_ = most_messages;
  state_ = State::ON;
}

void RecordingBuffer::end(State state) noexcept {
  const std::lock_guard guard(lock_);
  state_ = state;
}

RecordingBuffer::taken_t RecordingBuffer::take() noexcept {
  const std::lock_guard guard(lock_);
  if (gap_.lost != 0) used_ = static_cast<std::size_t>(writeGap(half_ + used_, gap_) - half_);
  gap_ = {};
  const std::uint64_t skipped = skipped_.load(std::memory_order_relaxed);
  const taken_t taken{
      {half_, std::exchange(used_, 0)}, state(), counted_ + skipped, filtered_ + skipped};
  half_ = half_ == memory_.get() ? half_ + CAPACITY : memory_.get();
  return taken;
}

} // namespace com::velanto::connectivity::recorder
