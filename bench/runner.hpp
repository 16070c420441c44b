// Times contenders against each other. Each round runs all of them once, one after the other
// (A B C, B A C, …), so that whatever slows the machine down for a while slows all of them; a ratio
// is formed within each round, and the median over the rounds is what counts. Before each timed run
// stands an untimed one, so that nobody works on the heap and in the caches that another has left;
// what is left of that all the same (up to 4 %, seen with one library entered twice) is shared out by
// another order in each round.
#ifndef VLT_BENCH_RUNNER_HPP
#define VLT_BENCH_RUNNER_HPP

#include <functional>
#include <string>
#include <vector>

#include "bench/contender.hpp"

namespace com::velanto::connectivity::bench {

// One of those that take turns.
struct lane_t {
  std::string name;
  // Prepares and runs once. Returns nanoseconds per message, or per whatever the lane counts. The
  // round decides the order of the messages.
  std::function<double(std::size_t round)> sample;
};

// Does what the C library's heap has put off: it leaves part of the work of freeing small blocks
// until somebody wants a large one. Wanting one at the end of each run makes every contender pay for
// its own frees; otherwise whatever comes next would do the work of some of them and not of others.
void settleHeap();

// Samples the processor time of the calling thread. `per` divides it: the number of messages,
// fields, …
[[nodiscard]] lane_t laneOf(std::string name, std::shared_ptr<Contender> contender, double per);
// Per message.
[[nodiscard]] lane_t laneOf(std::string name, std::shared_ptr<Contender> contender);

// What was measured of one lane, by round.
using samples_t = std::vector<double>;

struct result_t {
  std::string name;
  samples_t samples;
};

// Two rounds to warm up, then `rounds` rounds, which must be above 0.
[[nodiscard]] std::vector<result_t> race(const std::vector<lane_t>& lanes, std::size_t rounds);

[[nodiscard]] double median(samples_t samples);
// The median of a/b, round by round.
[[nodiscard]] double ratio(const samples_t& a, const samples_t& b);

} // namespace com::velanto::connectivity::bench

#endif
