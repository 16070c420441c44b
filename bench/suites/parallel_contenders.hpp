// Contenders that work at the same time, each on a thread of its own. The thread makes its inputs
// itself, so each has its own part of the heap.
#ifndef VLT_BENCH_SUITES_PARALLEL_CONTENDERS_HPP
#define VLT_BENCH_SUITES_PARALLEL_CONTENDERS_HPP

#include <barrier>
#include <chrono>
#include <thread>
#include <vector>

#include "bench/contender.hpp"

namespace com::velanto::connectivity::bench {

class ParallelContenders {
 public:
  explicit ParallelContenders(std::vector<std::unique_ptr<Contender>> members);
  ParallelContenders(const ParallelContenders&) = delete;
  ParallelContenders& operator=(const ParallelContenders&) = delete;
  ~ParallelContenders();

  // All fill, in the order of the round, and then all run at once. Returns nanoseconds from the first
  // start to the last end. A run that throws ends the program: there is nothing to go on with.
  [[nodiscard]] double sample(std::size_t round);

 private:
  using Clock = std::chrono::steady_clock;
  struct span_t {
    Clock::time_point start;
    Clock::time_point end;
  };

  void work(std::size_t member);

  std::vector<std::unique_ptr<Contender>> members_;
  std::vector<span_t> spans_;
  std::size_t round_ = 0;
  bool ending_ = false;
  std::barrier<> begin_; // with the caller of sample()
  std::barrier<> run_;   // the members alone
  std::barrier<> done_;  // with the caller of sample()
  std::vector<std::jthread> threads_;
};

} // namespace com::velanto::connectivity::bench

#endif
