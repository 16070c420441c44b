// The results of one line of input after its way through the plug-in, and their receivers.
//
//   reader → record_t (origin, line) → worker (message, kind, outcome, outputs, log) → consumers
//
// Everything that the tool shows, writes or compares is a consumer; the loop that drives the plug-in
// knows none of them. A record lives until its consumers have returned and is then used again, so
// memory does not grow with the input.
#ifndef VLT_TOOLS_RECORD_RECORD_HPP
#define VLT_TOOLS_RECORD_RECORD_HPP

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "ndjson/recorded.hpp"
#include "tools/host/hosted_plugin.hpp"
#include "tools/host/log_capture.hpp"
#include "tools/options/exit_status.hpp"
#include "tools/record/kind.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::tools {

// converted: a typed event came out. passed: something came out that the codec gave no type.
// dropped: nothing came out. malformed: the line is no message, so nothing was sent.
enum class Outcome { CONVERTED, PASSED, DROPPED, MALFORMED };

inline constexpr std::size_t OUTCOMES = 4;

[[nodiscard]] const char* nameOf(Outcome outcome) noexcept;

struct record_t {
  std::uint64_t number = 0;          // number among the lines that are not blank, from 1
  const std::string* file = nullptr; // its name as diagnostics show it
  std::uint64_t line_number = 0;     // in its file, from 1
  std::size_t pass = 0;              // earlier readings of the whole input
  std::string line;                  // byte for byte, without the line end
  std::string refused;               // why the reader has left out its bytes; empty: it has not

  std::optional<recorded_t> recorded; // the recorder's remark, in a recorded line
  const std::string* run = nullptr;   // the recorder's process; null: not known
  std::string remarks;                // the recorder's own lines before this one, as read

  text_part_t annotation; // where the line has a remark of an earlier run; of size 0: none

  Kind kind = Kind::NONE;
  Outcome outcome = Outcome::DROPPED;
  std::vector<Message> outputs; // one message, or none unless the plug-in is faulty
  std::string events;           // the outputs as lines of JSON
  std::vector<log_line_t> log;  // log lines while the plug-in had the message
  std::string printed;          // its text on standard error meanwhile, past the log
  std::string malformed;        // why the line is no message
  std::size_t column = 0;       // where, in bytes from 1; 0: not known

  [[nodiscard]] std::string place() const { return *file + ":" + std::to_string(line_number); }
};

// Towards which the recorder saw the message of a recorded line.
[[nodiscard]] inline Direction directionOf(const recorded_t& recorded) noexcept {
  return recorded.direction == recorded_t::Direction::HOST ? Direction::TOWARDS_HOST
                                                           : Direction::TOWARDS_TRANSPORT;
}

// Whether the recorder got both messages in one batch.
[[nodiscard]] bool sameBatch(const record_t& one, const record_t& other) noexcept;

// Whether no later message of the recorded batch can follow.
[[nodiscard]] inline bool isLastOfBatch(const record_t& record) noexcept {
  return !record.recorded || record.recorded->place + 1 == record.recorded->of;
}

// Gets every record, in the order of the input. An exception of a function ends the run.
class Consumer {
 public:
  Consumer() = default;
  Consumer(const Consumer&) = delete;
  Consumer& operator=(const Consumer&) = delete;
  virtual ~Consumer() = default;

  virtual void take(const record_t& record) = 0;
  // The lines of recorders beside the messages, each with its end, before the next record.
  virtual void takeRemarks(std::string_view /*lines*/) {}
  // Log lines while the plug-in had no message: at its creation, start and end.
  virtual void takeLog(std::span<const log_line_t> /*lines*/) {}
  // One call of the plug-in with `messages` messages took `time`.
  virtual void takeBatch(std::size_t /*messages*/, std::chrono::nanoseconds /*time*/) {}
  // The next record may be long in coming: write held-back output now.
  virtual void pause() {}
  // The plug-in has ended. Returns what this makes of the exit status of the run.
  virtual exit_status_t finish() { return EXIT_FINE; }
  // The last call, only when the run has reached the end of its input: the files may appear.
  virtual void commit() {}
};

} // namespace com::velanto::connectivity::tools

#endif
