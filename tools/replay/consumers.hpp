// The consumers that the options ask for, in the order in which they get each record.
#ifndef VLT_TOOLS_REPLAY_CONSUMERS_HPP
#define VLT_TOOLS_REPLAY_CONSUMERS_HPP

#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "tools/explain/explainer.hpp"
#include "tools/options/replay_options.hpp"
#include "tools/replay/comparing/expectation.hpp"
#include "tools/replay/comparing/other_build.hpp"
#include "tools/replay/comparing/recorded_events.hpp"
#include "tools/replay/redacting/redaction.hpp"
#include "tools/replay/summary/figures.hpp"
#include "tools/replay/summary/summary.hpp"
#include "tools/replay/writing/dead_letters.hpp"
#include "tools/replay/writing/diagnostics.hpp"
#include "tools/replay/writing/event_writer.hpp"
#include "tools/replay/writing/golden.hpp"
#include "tools/replay/writing/printed_lines.hpp"
#include "tools/replay/writing/terminal.hpp"
#include "tools/report/report.hpp"

namespace com::velanto::connectivity::tools {

class Consumers final : public Consumer {
 public:
  // The options and streams must outlive it. Throws ReplayError with EXIT_IO for a file that it
  // cannot create.
  Consumers(const ReplayOptions& options, std::ostream& events, std::ostream& diagnostics,
            Screen screen);

  // Adds the consumers that have a plug-in of their own; `library` must outlive this. Throws
  // PluginError.
  void addPlugins(const PluginLibrary& library, const data_t& configuration, Direction direction);

  void take(const record_t& record) override {
    for (Consumer* consumer : all_) consumer->take(record);
  }
  void takeRemarks(std::string_view lines) override {
    for (Consumer* consumer : all_) consumer->takeRemarks(lines);
  }
  void takeLog(std::span<const log_line_t> lines) override {
    for (Consumer* consumer : all_) consumer->takeLog(lines);
  }
  void takeBatch(std::size_t messages, std::chrono::nanoseconds time) override {
    for (Consumer* consumer : all_) consumer->takeBatch(messages, time);
  }
  void pause() override {
    for (Consumer* consumer : all_) consumer->pause();
  }
  // The last one first; the worst status of all.
  exit_status_t finish() override;
  void commit() override {
    for (Consumer* consumer : all_) consumer->commit();
  }

  // One more, which must stay until the last record or its removal.
  void add(Consumer& consumer) { all_.push_back(&consumer); }
  void remove(Consumer& consumer) { std::erase(all_, &consumer); }

  // Standard output has no reader any more, and the run has no other result.
  [[nodiscard]] bool hasNoUse() const noexcept;
  [[nodiscard]] Figures& figures() noexcept { return figures_; }
  [[nodiscard]] PrintedLines& printed() noexcept { return printed_; }
  // Time during which the run's plug-in was at rest, and blocks that another one kept for good.
  [[nodiscard]] std::chrono::nanoseconds pauses() const noexcept {
    return explainer_ ? explainer_->time() : std::chrono::nanoseconds{};
  }
  [[nodiscard]] std::int64_t lostBlocks() const noexcept {
    return (explainer_ ? explainer_->lostBlocks() : 0) + (report_ ? report_->lostBlocks() : 0);
  }
  // How the comparison with recorded events came out, if the options ask for one.
  [[nodiscard]] std::optional<pairing_t> pairing() const {
    return recorded_events_ ? std::optional(recorded_events_->figures()) : std::nullopt;
  }
  // The summary, if the options ask for one.
  [[nodiscard]] std::string summaryOf(const run_figures_t& run) const;
  // Writes the page, if the options ask for one. Throws ReplayError with EXIT_IO.
  void writeReport(const run_figures_t& run, exit_status_t status);

 private:
  void addToReport(const PluginLibrary& library, const data_t& configuration, Direction direction);
  void showDifferences(Comparer& comparer, report::Changes& changes);

  const ReplayOptions& options_;
  std::ostream& events_out_;
  std::ostream& diagnostics_out_;
  Screen screen_;
  Figures figures_;
  EventWriter events_;
  Diagnostics diagnostics_;
  PrintedLines printed_;
  std::optional<Summary> summary_;
  std::optional<DeadLetters> dead_letters_;
  std::optional<GoldenWriter> golden_;
  std::optional<Expectation> expectation_;
  std::optional<RecordedEvents> recorded_events_;
  std::optional<OtherBuild> other_build_;
  std::optional<Explainer> explainer_;
  std::optional<Redaction> redaction_;
  std::optional<report::Report> report_;
  std::vector<std::pair<const Comparer*, report::Changes*>> compared_; // for the report
  std::vector<Consumer*> all_;
};

} // namespace com::velanto::connectivity::tools

#endif
