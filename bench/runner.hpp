// Times contenders against each other. Each round runs all of them once, in another order (A B C,
// B A C, …). So a disturbance of the machine slows all of them. A ratio belongs to one round; the median over
// the rounds counts. An untimed run precedes each timed one, so that no contender works on
// another's heap and caches. Another order in each round spreads the remaining effect (up to 4 %,
// seen with one library entered twice).
#ifndef VLT_BENCH_RUNNER_HPP
#define VLT_BENCH_RUNNER_HPP

#include <functional>
#include <string>
#include <vector>

#include "bench/contender.hpp"

namespace com::velanto::connectivity::bench {

// A contender that takes turns with others.
struct lane_t {
  std::string name;
  // Prepares and runs once. Returns nanoseconds per message, or per another unit of the lane. The
  // round decides the order of the messages.
  std::function<double(std::size_t round)> sample;
};

// Does the work that the C library's heap has postponed: it frees small blocks in full only when
// somebody asks for a large one. Asking for one at the end of each run makes every contender pay
// for its own frees, instead of the next one.
void settleHeap();

// Samples the processor time of the calling thread. `per` divides it: the number of messages,
// fields, …
[[nodiscard]] lane_t laneOf(std::string name, std::shared_ptr<Contender> contender, double per);
// Per message.
[[nodiscard]] lane_t laneOf(std::string name, std::shared_ptr<Contender> contender);

// The measurements of one lane, by round.
using samples_t = std::vector<double>;

struct result_t {
  std::string name;
  samples_t samples;
};

// Two rounds to warm up, then `rounds` rounds, which must be above 0.
[[nodiscard]] std::vector<result_t> race(const std::vector<lane_t>& lanes, std::size_t rounds);

[[nodiscard]] double median(samples_t samples);
// The sample above a `share` of them, from 0 to 1.
[[nodiscard]] double quantile(samples_t samples, double share);
// The median of a/b, round by round.
[[nodiscard]] double ratio(const samples_t& a, const samples_t& b);

} // namespace com::velanto::connectivity::bench

#endif
