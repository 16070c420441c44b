// The consumers that the options ask for, in the order in which they get each record.
#ifndef VLT_TOOLS_REPLAY_CONSUMERS_HPP
#define VLT_TOOLS_REPLAY_CONSUMERS_HPP

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tools/options/replay_options.hpp"
#include "tools/replay/comparing/expectation.hpp"
#include "tools/replay/summary/figures.hpp"
#include "tools/replay/summary/summary.hpp"
#include "tools/replay/writing/dead_letters.hpp"
#include "tools/replay/writing/diagnostics.hpp"
#include "tools/replay/writing/event_writer.hpp"
#include "tools/replay/writing/golden.hpp"

namespace com::velanto::connectivity::tools {

class Consumers final : public Consumer {
 public:
  // The streams must outlive it. Throws ReplayError with EXIT_IO when a file cannot be made.
  Consumers(const ReplayOptions& options, std::ostream& events, std::ostream& diagnostics);

  void take(const record_t& record) override {
    for (Consumer* consumer : all_) consumer->take(record);
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

  // One more, which must stay until the last record or its removal.
  void add(Consumer& consumer) { all_.push_back(&consumer); }
  void remove(Consumer& consumer) { std::erase(all_, &consumer); }

  // Nobody reads the events any more.
  [[nodiscard]] bool closed() const noexcept { return events_.closed(); }
  [[nodiscard]] Figures& figures() noexcept { return figures_; }
  // Null when none is asked for.
  [[nodiscard]] const Summary* summary() const noexcept { return summary_ ? &*summary_ : nullptr; }
  [[nodiscard]] Expectation* expectation() noexcept {
    return expectation_ ? &*expectation_ : nullptr;
  }

 private:
  Figures figures_;
  EventWriter events_;
  Diagnostics diagnostics_;
  std::optional<Summary> summary_;
  std::optional<DeadLetters> dead_letters_;
  std::optional<GoldenWriter> golden_;
  std::optional<Expectation> expectation_;
  std::vector<Consumer*> all_;
};

} // namespace com::velanto::connectivity::tools

#endif
