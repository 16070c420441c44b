#include "tools/explain/explainer.hpp"

#include <utility>

#include "tools/explain/silence.hpp"
#include "tools/host/host_library.hpp"

namespace com::velanto::connectivity::tools {

namespace {

// Adds the blocks that its life makes and does not give back.
class BlockCount {
 public:
  explicit BlockCount(std::int64_t& sum) noexcept : sum_(sum), before_(liveBlocks().value_or(0)) {}
  BlockCount(const BlockCount&) = delete;
  BlockCount& operator=(const BlockCount&) = delete;
  ~BlockCount() { sum_ += liveBlocks().value_or(0) - before_; }

 private:
  std::int64_t& sum_;
  std::int64_t before_;
};

} // namespace

Explainer::Explainer(const PluginLibrary& library, const data_t& configuration, Direction direction,
                     ExplanationForm form, std::ostream& out)
    : form_(form), out_(out, "cannot write the explanations") {
  const BlockCount count(lost_blocks_);
  const Silence silence;
  std::vector<log_line_t> ignored;
  chain_.emplace(library, configuration, direction, ignored);
}

void Explainer::take(const record_t& record) {
  if (record.pass > 0) return;
  const auto start = std::chrono::steady_clock::now();
  const explanation_t explanation = explanationOf(record);
  if (record.outcome != Outcome::MALFORMED && explanation.stopped.empty()) {
    groups_.add(record, explanation);
  }
  // An empty line separates explanations.
  const bool first = std::exchange(first_, false);
  if (!first && form_ != ExplanationForm::JSON && record.outcome != Outcome::MALFORMED)
    out_.write("\n");
  out_.write(form_ == ExplanationForm::JSON
                 ? explanationJson(record, explanation)
                 : explanationText(record, explanation, form_ == ExplanationForm::COLOURED_TEXT));
  time_ += std::chrono::steady_clock::now() - start;
}

explanation_t Explainer::explanationOf(const record_t& record) {
  if (record.outcome == Outcome::MALFORMED) return {};
  explanation_t stopped;
  stopped.stopped = whyTooLarge(record.line);
  stopped.limited = true;
  if (!stopped.stopped.empty()) return stopped;
  const BlockCount count(lost_blocks_);
  const Silence silence;
  const Message message = reader_.parseMessage(record.line);
  Probe probe(message,
              [this](Message& changed) { return std::move(chain_->send(std::span(&changed, 1))); });
  return explain(record, probe);
}

exit_status_t Explainer::finish() {
  const BlockCount count(lost_blocks_);
  const Silence silence;
  chain_->shutdown();
  chain_.reset(); // with messages that came out unasked
  return EXIT_FINE;
}

} // namespace com::velanto::connectivity::tools
