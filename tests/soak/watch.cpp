#include "tests/soak/watch.hpp"

#include <unistd.h>

#include <fstream>
#include <iomanip>
#include <stdexcept>

#include "standin/standin.h"

namespace com::velanto::connectivity::soak {

namespace {

// A round of each kind, and a new codec in between.
constexpr std::int64_t WARM_UP_ROUNDS = Traffic::TRACED_EVERY;
constexpr double WARM_UP_SHARE = 0.1; // of the time
// The C library's heap may take this in addition, depending on the places of blocks.
[[maybe_unused]] constexpr std::int64_t GROWTH_ALLOWED = 1 << 20;
constexpr double MEBIBYTE = 1 << 20;

std::int64_t residentBytes() {
  std::ifstream statm("/proc/self/statm");
  std::int64_t total = 0;
  std::int64_t resident = 0;
  if (!(statm >> total >> resident)) throw std::runtime_error("cannot read /proc/self/statm");
  return resident * sysconf(_SC_PAGESIZE);
}

} // namespace

void Watch::run(seconds_t length) {
  start_ = clock_t::now();
  while (rounds_ < WARM_UP_ROUNDS || elapsed() < WARM_UP_SHARE * length) runRound();
  blocks_ = standin_live_blocks_total();
  resident_ = residentBytes();
  const std::int64_t least = 2 * rounds_;
  seconds_t shown = elapsed();
  while (rounds_ < least || elapsed() < length) {
    runRound();
    judgeMemory();
    if (elapsed() - shown < interval_) continue;
    shown = elapsed();
    writeLine("at it");
  }
  writeLine("done");
}

void Watch::runRound() {
  const figures_t figures = traffic_.run(rounds_);
  judgeFigures(figures);
  messages_ += figures.sent_towards_host + figures.sent_towards_transport;
  ++rounds_;
}

void Watch::judgeFigures(const figures_t& figures) {
  const std::string where = "round " + std::to_string(rounds_) + ": ";
  if (const std::string fault = figures.imbalance(); !fault.empty()) {
    throw std::runtime_error(where + fault + ": " + describe(figures));
  }
  auto& expected = Traffic::isTraced(rounds_) ? traced_ : quiet_;
  if (!expected) {
    expected = figures;
    // The trace adds lines and changes nothing else.
    if (quiet_) expected->traced = quiet_->traced;
    if (quiet_ && *expected != *quiet_) {
      throw std::runtime_error(where + "the trace changes the results: " + describe(figures));
    }
    expected->traced = figures.traced;
  }
  if (figures != *expected) {
    throw std::runtime_error(where + describe(figures) +
                             "; the first such round: " + describe(*expected));
  }
}

void Watch::judgeMemory() const {
  if (const std::int64_t blocks = standin_live_blocks_total(); blocks != blocks_) {
    throw std::runtime_error("round " + std::to_string(rounds_) + ": " + std::to_string(blocks) +
                             " blocks live, " + std::to_string(blocks_) + " after the warm-up");
  }
#ifndef VLT_SANITIZED // which keep freed memory for a while, and look for leaks themselves
  if (const std::int64_t grown = residentBytes() - resident_; grown > GROWTH_ALLOWED) {
    throw std::runtime_error("round " + std::to_string(rounds_) +
                             ": resident memory has grown by " + std::to_string(grown) +
                             " bytes since the warm-up, after " + std::to_string(messages_) +
                             " messages");
  }
#endif
}

void Watch::writeLine(const char* state) const {
  const double seconds = elapsed().count();
  out_ << std::fixed << std::setprecision(1) << "soak: " << state << " after " << seconds << " s, "
       << rounds_ << " rounds, " << messages_ << " messages, " << std::setprecision(0)
       << static_cast<double>(messages_) / seconds << " a second, " << standin_live_blocks_total()
       << " blocks live, resident memory " << std::setprecision(2)
       << static_cast<double>(resident_) / MEBIBYTE << " MiB after the warm-up, "
       << static_cast<double>(residentBytes()) / MEBIBYTE << " MiB now\n"
       << std::flush;
}

} // namespace com::velanto::connectivity::soak
