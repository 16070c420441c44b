// Takes lines through one chain and completes their records. Which message an output or a log line
// belongs to does not depend on the build of the plug-in:
//
//   batches of one    all results, log lines and lines on standard error of a call belong to its
//                     message
//   larger batches    when as many messages come out as went in and nothing else does, they belong
//                     to each other in order. Otherwise it reads each message of the batch again and
//                     sends it alone. The result must be the same, since no message may depend on
//                     its neighbours; a difference is a broken law
#ifndef VLT_TOOLS_REPLAY_RUNNING_WORKER_HPP
#define VLT_TOOLS_REPLAY_RUNNING_WORKER_HPP

#include <chrono>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "tools/host/replay_chain.hpp"
#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

struct batch_time_t {
  std::size_t messages;
  std::chrono::nanoseconds time;
};

// Events beyond the records.
struct incidents_t {
  std::vector<std::string> broken_laws; // one line each
  std::vector<std::size_t> failed; // messages of each batch that the plug-in reported as failed
  std::vector<batch_time_t> batches;
};

// The bounds of batches: of `size` messages, at least 1, or those of the recording, and then also in
// its direction.
struct batching_t {
  std::size_t size = 1;
  bool as_recorded = false;
};

class Worker {
 public:
  using Done = std::function<void(record_t&)>;

  Worker(const PluginLibrary& library, const data_t& configuration, Direction direction,
         const batching_t& batching, std::vector<log_line_t>& log)
      : batching_(batching),
        direction_(direction),
        chain_(library, configuration, direction, log) {}

  // Completes `records`, whose origin and line are set, and hands each of them to `done`, in order
  // and as soon as it is complete.
  void process(std::span<record_t> records, const Done& done);

  [[nodiscard]] incidents_t& incidents() noexcept { return incidents_; }
  call_result_t& shutdown() { return chain_.shutdown(); }

 private:
  [[nodiscard]] bool read(record_t& record, Message& message);
  void sendBatch(std::span<record_t> records);
  call_result_t& send(std::span<Message> messages, Direction direction);
  void distribute(call_result_t& result, std::span<record_t> records);
  void separate(const call_result_t& whole, std::span<record_t> records);
  void conclude(record_t& record);

  [[nodiscard]] std::size_t lengthOfBatch(std::span<const record_t> records) const noexcept;
  [[nodiscard]] Direction wayOf(const record_t& record) const noexcept {
    return batching_.as_recorded && record.recorded ? directionOf(*record.recorded) : direction_;
  }

  batching_t batching_;
  Direction direction_;
  JsonReader reader_;
  MetadataReader metadata_;
  ReplayChain chain_;
  std::vector<Message> batch_;
  std::vector<char> typed_before_; // for each message of the batch
  incidents_t incidents_;
};

} // namespace com::velanto::connectivity::tools

#endif
