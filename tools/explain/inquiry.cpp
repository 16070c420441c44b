#include "tools/explain/inquiry.hpp"

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

Inquiry::Inquiry(const PluginLibrary& library, const data_t& configuration, Direction direction) {
  const BlockCount count(lost_blocks_);
  const Silence silence;
  std::vector<log_line_t> ignored;
  chain_.emplace(library, configuration, direction, ignored);
}

explanation_t Inquiry::explain(const record_t& record, std::size_t most_values) {
  explanation_t stopped;
  stopped.stopped = whyTooLarge(record.line);
  stopped.limited = true;
  if (!stopped.stopped.empty()) return stopped;
  const BlockCount count(lost_blocks_);
  const Silence silence;
  const Message message = reader_.parseMessage(record.line);
  Probe probe(
      message, [this](Message& changed) { return std::move(chain_->send(std::span(&changed, 1))); },
      most_values);
  return tools::explain(record, probe);
}

void Inquiry::end() {
  const BlockCount count(lost_blocks_);
  const Silence silence;
  chain_->shutdown();
  chain_.reset(); // with messages that came out unasked
}

} // namespace com::velanto::connectivity::tools
