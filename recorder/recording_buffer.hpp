// The lines between the host's threads, which make them, and the writer thread, which takes them.
//
//   host's threads ──add──► [ half being filled ]      a short lock, never held across a call of
//                                    │ take swaps      the host, of the disk or of the allocator
//   writer thread  ◄──────── [ half being written ]
//
// A message that finds no room is lost; the next line is then a gap. Each message counts once: as
// recorded (its line is here), filtered or lost.
#ifndef VLT_RECORDER_RECORDING_BUFFER_HPP
#define VLT_RECORDER_RECORDING_BUFFER_HPP

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string_view>

#include "ndjson/recorded_writer.hpp"
#include "recorder/filter.hpp"
#include "recorder/recording_lines.hpp"

namespace com::velanto::connectivity::recorder {

// Lets the writer thread sleep until there is work.
class Waker {
 public:
  // One call of the kernel at most for each sleep.
  void wake() noexcept;
  // Until `wake`, but at most so long. Spurious returns are possible.
  void sleep(unsigned milliseconds) noexcept;

 private:
  std::atomic<std::uint32_t> is_awake_{0};
};

class RecordingBuffer {
 public:
  // Bytes of one half.
  static constexpr std::size_t CAPACITY = std::size_t{4} * 1024 * 1024;

  enum class State {
    CLOSED, // messages are lost: not started, shut down, or stopped at the bound
    OFF,    // messages are filtered: switched off, or at a configured end
    ON
  };

  // A batch on its way to `direction`.
  struct batch_t {
    std::span<const Message> messages;
    Direction direction;
    std::uint64_t number;
  };

  // `longest_line` in bytes. Allocates all memory there will be, and writes to it, so that no page
  // is missing later. Throws std::bad_alloc.
  RecordingBuffer(const FieldSet& omitted, std::size_t longest_line);

  // ---- host's threads

  [[nodiscard]] State state() const noexcept { return state_.load(std::memory_order_relaxed); }
  // Counts messages as filtered, without a lock.
  void skip(std::size_t messages) noexcept {
    skipped_.fetch_add(messages, std::memory_order_relaxed);
  }
  // Writes the lines of the messages that `filter` takes, or counts the messages as the state says.
  void add(const batch_t& batch, const Filter& filter) noexcept;

  // ---- writer thread

  // Begins with State::ON, which ends after so many recorded messages.
  void begin(std::uint64_t most_messages) noexcept;
  void end(State state) noexcept;

  // The lines since the last call, which stay valid until the next one, the state after them, and
  // the messages seen and filtered so far. All others are in lines taken so far, or in their gaps.
  struct taken_t {
    std::string_view lines;
    State state;
    std::uint64_t seen;
    std::uint64_t filtered;
  };
  [[nodiscard]] taken_t take() noexcept;

  Waker& waker() noexcept { return waker_; }

 private:
  [[nodiscard]] bool append(const Message& message, const remark_t& remark) noexcept;
  void lose(std::uint64_t number, const char* reason) noexcept;

  Waker waker_;
  std::atomic<State> state_{State::CLOSED}; // written under the lock
  std::atomic<std::uint64_t> skipped_{0};

  std::mutex lock_; // guards the rest
  const std::size_t longest_line_;
  RecordedWriter writer_;
  std::unique_ptr<char[]> memory_;
  char* half_;
  std::size_t used_ = 0; // bytes of the half
  gap_t gap_;            // since the last line
  std::uint64_t counted_ = 0;
  std::uint64_t filtered_ = 0;
  std::uint64_t left_ = 0; // messages until the session ends
};

} // namespace com::velanto::connectivity::recorder

#endif
