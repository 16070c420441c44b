// The totals of a run: kinds by outcomes, reasons of drops, channels, times. Counted here, written
// by summary_text.cpp for people and by summary_json.cpp for programs, added up by merging.cpp. Its memory grows with the
// number of different reasons and channels, not with the messages.
#ifndef VLT_TOOLS_REPLAY_SUMMARY_SUMMARY_HPP
#define VLT_TOOLS_REPLAY_SUMMARY_SUMMARY_HPP

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/host/file_identity.hpp"
#include "tools/record/record.hpp"
#include "tools/record/tally.hpp"
#include "tools/replay/comparing/recorded_events.hpp"
#include "tools/replay/summary/durations.hpp"
#include "tools/replay/writing/printed_lines.hpp"

namespace com::velanto::connectivity::tools {

struct counted_reason_t {
  std::string code;
  std::string key;
  std::uint64_t count = 0;
  std::uint64_t first_number = 0; // of the record
  std::string first;              // FILE:LINE
};

// The builds in a run.
struct builds_t {
  std::string tool; // its name
  file_identity_t plugin;
  std::optional<file_identity_t> against;
};

class Summary final : public Consumer, public Tally {
 public:
  Summary() : Tally(SIZE_MAX) {}

  void take(const record_t& record) override;
  void takeBatch(std::size_t messages, std::chrono::nanoseconds time) override;
  void addReason(counted_reason_t reason);
  void addBatches(std::chrono::nanoseconds time, std::uint64_t batches) {
    batches_.add(time, batches);
  }
  void takeBuilds(builds_t builds) { builds_ = std::move(builds); }

  // The most frequent first, among equals the earliest.
  [[nodiscard]] std::vector<const counted_reason_t*> reasons() const { return ranked(reasons_); }

  [[nodiscard]] const Durations& batches() const noexcept { return batches_; }
  [[nodiscard]] const builds_t& builds() const noexcept { return builds_; }

 private:
  std::map<std::pair<std::string, std::string>, counted_reason_t> reasons_; // by code and key
  Durations batches_;
  builds_t builds_;
};

// The other parts of the summary.
struct run_figures_t {
  std::uint64_t read;
  std::uint64_t out;
  std::chrono::nanoseconds elapsed;
  std::optional<std::int64_t> blocks; // not given back; nothing when the host library cannot tell
  const Recordings& recordings;
  std::optional<pairing_t> pairing; // with recorded events, if that was asked for
  bool complete = true;             // the run has reached the end of its input
};

// Lines of at most 79 columns, or longer for a place, which is whole.
[[nodiscard]] std::string summaryText(const Summary& summary, const run_figures_t& run);

// Of the form of summaryJson(); a change that breaks readers raises it.
inline constexpr std::int64_t SUMMARY_VERSION = 1;

// One line with an object.
[[nodiscard]] std::string summaryJson(const Summary& summary, const run_figures_t& run,
                                      const PrintedLines& printed);

} // namespace com::velanto::connectivity::tools

#endif
