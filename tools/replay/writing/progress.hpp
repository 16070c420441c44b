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
  // `fraction` gives the fraction done, 0 to 1, or nothing when the end is not known. `above`, if
  // there is one, gives more lines to show, each with its end; a pause then shows them, too.
  Progress(Terminal& terminal, std::function<std::optional<double>()> fraction,
           std::function<std::string()> above = {})
      : terminal_(terminal), fraction_(std::move(fraction)), above_(std::move(above)) {}

  void take(const record_t& record) override;
  void pause() override;

 private:
  using clock_t = std::chrono::steady_clock;

  void show(clock_t::time_point now);

  Terminal& terminal_;
  std::function<std::optional<double>()> fraction_;
  std::function<std::string()> above_;
  std::uint64_t messages_ = 0;
  clock_t::time_point start_ = clock_t::now();
  clock_t::time_point shown_ = start_;
};

// The line: fraction done, messages a second, time left.
[[nodiscard]] std::string progressLine(std::uint64_t messages,
                                       std::chrono::duration<double> elapsed,
                                       std::optional<double> fraction);

} // namespace com::velanto::connectivity::tools

#endif
