// Compares the events of this build with the events that a recorder got after the codec of
// production, whichever codec ran there. The input is the recording before that codec. Both
// recorders give a batch the same number, so batches are paired by run, number and direction.
// Within a batch:
//
//   (1) both sides keep their order; an event and a message with the same "id" belong together
//   (2) the events between two such pairs belong together in order, if both sides have as many
//   (3) an event on one side alone is a difference, if the other side of the batch is recorded whole
//
// The rest cannot be compared, and is counted with its reason.
#ifndef VLT_TOOLS_REPLAY_COMPARING_RECORDED_EVENTS_HPP
#define VLT_TOOLS_REPLAY_COMPARING_RECORDED_EVENTS_HPP

#include <array>
#include <cstdint>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "ndjson/recorded_writer.hpp"
#include "tools/record/record.hpp"
#include "tools/replay/comparing/comparer.hpp"
#include "tools/replay/comparing/recorded_batches.hpp"
#include "tools/replay/input/recordings.hpp"
#include "value/hashed_key.hpp"

namespace com::velanto::connectivity::tools {

// Why something was not compared.
enum class Unpaired {
  NO_REMARK,  // a line of the input that no recorder wrote
  NO_BATCH,   // messages; their batch is not among the events
  PART,       // messages and events of a batch that one of the recordings has in part
  NO_MESSAGE, // events; their batch is not in the input
};

inline constexpr std::size_t UNPAIRED = 4;

// As JSON has it, and as the end of a sentence about a number of them.
[[nodiscard]] const char* nameOf(Unpaired reason) noexcept;
[[nodiscard]] const char* textOf(Unpaired reason) noexcept;

struct pairing_t {
  const Recordings& events;   // of the recording of events
  std::uint64_t compared = 0; // messages, also dropped on both sides
  std::uint64_t different = 0;
  std::array<std::uint64_t, UNPAIRED> unpaired{};
};

class RecordedEvents final : public Consumer {
 public:
  // `path` is the recording of events; throws as inputsFrom() does. `diagnostics` must outlive
  // this.
  RecordedEvents(const std::string& path, std::ostream& diagnostics);

  void take(const record_t& record) override;
  void takeRemarks(std::string_view lines) override;
  // Names the batches and messages left out. Nothing compared at all is EXIT_DIFFERENT, too.
  exit_status_t finish() override;

  [[nodiscard]] pairing_t figures() const;

  // It shows the differences; whoever listens gets them, too.
  [[nodiscard]] Comparer& comparer() noexcept { return comparer_; }

 private:
  // A message of the batch: of the input, with this build's event, or an event of the recording.
  struct message_t {
    std::string place;
    std::string id;    // as JSON; empty without one
    std::string event; // members as recorded, which read back without a loss; empty: dropped
    std::string log;   // of a dropped one
    bool paired = false;
  };
  using messages_t = std::span<message_t>;

  void takeMessage(const record_t& record);
  void compareBatch();
  void compareWithNothing(bool is_known);
  void align(messages_t events, messages_t own);
  void settle(messages_t events, messages_t own);
  void compare(const message_t* event, const message_t* own);
  void leave(Unpaired reason, std::uint64_t count = 1) {
    unpaired_[static_cast<std::size_t>(reason)] += count;
  }
  [[nodiscard]] Message eventAt(const recorded_line_t& line);
  [[nodiscard]] std::string recordedFormOf(const Message& message);
  [[nodiscard]] data_t valueOf(const message_t& message);
  [[nodiscard]] std::string idOf(const Message& message) const;
  [[nodiscard]] bool isOmitted(const difference_t& difference) const;

  std::ostream& diagnostics_;
  std::string path_;
  JsonReader reader_;
  RecordedWriter writer_;
  std::string room_; // for the writer
  hashed_key_t id_;
  RecordedBatches events_;
  Recordings input_; // the remarks of the input's recorder
  Comparer comparer_;
  std::string run_; // of the batch
  std::optional<recorded_t> first_;
  std::uint64_t lines_ = 0; // of the batch, so far
  std::vector<message_t> batch_;
  bool own_whole_ = false;
  bool events_whole_ = false;
  std::array<std::uint64_t, UNPAIRED> unpaired_{};
};

} // namespace com::velanto::connectivity::tools

#endif
