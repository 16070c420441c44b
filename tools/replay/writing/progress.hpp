// Tells on a terminal how far a run has come.
#ifndef VLT_TOOLS_REPLAY_WRITING_PROGRESS_HPP
#define VLT_TOOLS_REPLAY_WRITING_PROGRESS_HPP

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "tools/record/record.hpp"
#include "tools/replay/writing/terminal.hpp"

namespace com::velanto::connectivity::tools {

class Progress final : public Consumer {
 public:
  // `fraction` gives the fraction done, 0 to 1, or nothing when the end is not known.
  Progress(Terminal& terminal, std::function<std::optional<double>()> fraction)
      : terminal_(terminal), fraction_(std::move(fraction)) {}

  void take(const record_t& record) override;

 private:
  using clock_t = std::chrono::steady_clock;

  Terminal& terminal_;
  std::function<std::optional<double>()> fraction_;
  clock_t::time_point start_ = clock_t::now();
  clock_t::time_point shown_ = start_;
};

// The line: fraction done, messages a second, time left.
[[nodiscard]] std::string progressLine(std::uint64_t messages,
                                       std::chrono::duration<double> elapsed,
                                       std::optional<double> fraction);

} // namespace com::velanto::connectivity::tools

#endif
