#include "tools/explain/probe.hpp"

namespace com::velanto::connectivity::tools {

std::optional<answer_t> Probe::ask(std::span<const change_t> changes) {
  if (looked_at_ >= most_values_) {
    exhausted_ = true;
    return std::nullopt;
  }
  ++runs_;
  answer_t answer = run(changes);
  looked_at_ += answer.before.effort() + 1;
  return answer;
}

answer_t Probe::run(std::span<const change_t> changes) const {
  Message message = copyOf(message_);
  for (const change_t& change : changes) apply(message, change);
  answer_t answer;
  answer.before = Trace(message);
  const call_result_t result = plugin_(message);
  answer.after = Trace(result.outputs);
  answer.messages = result.outputs.size();
  for (const log_line_t& line : result.log) {
    if (line.level <= DROPPED_LEVEL) answer.log += line.text + '\n';
  }
  return answer;
}

} // namespace com::velanto::connectivity::tools
