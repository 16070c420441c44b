// Runs one message again and again, each time with another change, and tells the result. It knows
// no plug-in: its maker says how to run a message.
#ifndef VLT_TOOLS_EXPLAIN_PROBE_HPP
#define VLT_TOOLS_EXPLAIN_PROBE_HPP

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "tools/explain/change.hpp"
#include "tools/explain/trace.hpp"
#include "tools/host/replay_chain.hpp"

namespace com::velanto::connectivity::tools {

// The result of one run.
struct answer_t {
  Trace before; // of the message as it went in
  Trace after;  // of all that came out
  std::size_t messages = 0;
  std::string log; // the lines that say why something failed, each with its end

  [[nodiscard]] bool cameOut() const noexcept { return messages > 0; }
  [[nodiscard]] bool passed() const { return messages == 1 && before.sameContent(after); }
};

class Probe {
 public:
  // Sends one message, which is the caller's to change, through the plug-in.
  using Plugin = std::function<call_result_t(Message& message)>;

  static constexpr std::size_t MOST_VALUES = 1'000'000; // some seconds

  // `message` must outlive the probe. A bound limits the values that all runs together look at: a
  // message of 1 000 values runs some 1 000 times at most, one of 20 000 values some 50 times. Deep
  // and large values count as several.
  Probe(const Message& message, Plugin plugin, std::size_t most_values = MOST_VALUES)
      : message_(message), plugin_(std::move(plugin)), most_values_(most_values) {}

  // The message as it is; always allowed.
  answer_t ask() const { return run({}); }
  // The result of the message with `changes` made in this order; nothing beyond the bound.
  std::optional<answer_t> ask(std::span<const change_t> changes);
  std::optional<answer_t> ask(const change_t& change) { return ask(std::span(&change, 1)); }

  [[nodiscard]] const Message& message() const noexcept { return message_; }
  // Runs with changes so far, and whether the bound has refused one more.
  [[nodiscard]] std::size_t runs() const noexcept { return runs_; }
  [[nodiscard]] bool exhausted() const noexcept { return exhausted_; }

 private:
  [[nodiscard]] answer_t run(std::span<const change_t> changes) const;

  const Message& message_;
  Plugin plugin_;
  std::size_t most_values_;
  std::size_t runs_ = 0;
  std::size_t looked_at_ = 0; // values, in all runs
  bool exhausted_ = false;
};

} // namespace com::velanto::connectivity::tools

#endif
