// Judges a plug-in's long life:
// (1) warm up, until memory has found its size and each kind of round has run;
// (2) run rounds until the time is over, and compare each with the first of its kind;
// (3) compare memory.
// The first fault ends it.
#ifndef VLT_TESTS_SOAK_WATCH_HPP
#define VLT_TESTS_SOAK_WATCH_HPP

#include <chrono>
#include <optional>
#include <ostream>

#include "tests/soak/traffic.hpp"

namespace com::velanto::connectivity::soak {

using seconds_t = std::chrono::duration<double>;

class Watch {
 public:
  // `out` gets a line every `interval`, and a closing one.
  Watch(Traffic& traffic, std::ostream& out, seconds_t interval)
      : traffic_(traffic), out_(out), interval_(interval) {}

  // Runs for `length`, but at least for the warm-up and as many rounds again. Throws
  // std::runtime_error when a round's figures differ or do not add up, when blocks are left over,
  // or when resident memory has grown.
  void run(seconds_t length);

 private:
  using clock_t = std::chrono::steady_clock;

  void runRound();
  void judgeFigures(const figures_t& figures);
  void judgeMemory() const;
  void writeLine(const char* state) const;
  [[nodiscard]] seconds_t elapsed() const { return clock_t::now() - start_; }

  Traffic& traffic_;
  std::ostream& out_;
  seconds_t interval_;
  clock_t::time_point start_;
  std::int64_t rounds_ = 0;
  std::int64_t messages_ = 0;
  std::optional<figures_t> quiet_;  // the figures that rounds without trace must have
  std::optional<figures_t> traced_; // rounds with
  std::int64_t blocks_ = 0;         // live after the warm-up
  std::int64_t resident_ = 0;       // bytes, after the warm-up
};

} // namespace com::velanto::connectivity::soak

#endif
