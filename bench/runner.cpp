#include "bench/runner.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>

namespace com::velanto::connectivity::bench {

namespace {

// The processor time of this thread, in nanoseconds. Other programs on the machine do not count,
// except for their effect on the caches.
double usedTime() noexcept {
  std::timespec used{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
  return static_cast<double>(used.tv_sec) * 1e9 + static_cast<double>(used.tv_nsec);
}

} // namespace

void settleHeap() {
  constexpr std::size_t LARGE = std::size_t{64} * 1024;
  void* block = std::malloc(LARGE);
  benchmark::DoNotOptimize(block);
  std::free(block);
}

lane_t laneOf(std::string name, std::shared_ptr<Contender> contender, double per) {
  return {std::move(name), [contender = std::move(contender), per](std::size_t round) {
            const order_t order = orderOfRound(contender->size(), round);
            // Once for nothing: the heap is then as this contender leaves it, and not the one
            // before.
            contender->fill(order);
            contender->run();
            contender->fill(order);
            settleHeap();
            benchmark::ClobberMemory();
            const double start = usedTime();
            contender->run();
            settleHeap();
            benchmark::ClobberMemory();
            return (usedTime() - start) / per;
          }};
}

lane_t laneOf(std::string name, std::shared_ptr<Contender> contender) {
  const auto messages = static_cast<double>(contender->size());
  return laneOf(std::move(name), std::move(contender), messages);
}

std::vector<result_t> race(const std::vector<lane_t>& lanes, std::size_t rounds) {
  constexpr std::size_t WARM_UPS = 2;
  std::vector<result_t> results;
  results.reserve(lanes.size());
  for (const lane_t& lane : lanes) results.push_back({lane.name, {}});
  for (std::size_t round = 0; round < WARM_UPS + rounds; ++round) {
    for (const std::uint32_t i : orderOfRound(lanes.size(), round)) {
      const double nanoseconds = lanes[i].sample(round);
      if (round >= WARM_UPS) results[i].samples.push_back(nanoseconds);
    }
  }
  return results;
}

double median(samples_t samples) {
  const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
  std::nth_element(samples.begin(), middle, samples.end());
  if (samples.size() % 2 == 1) return *middle;
  return (*middle + *std::max_element(samples.begin(), middle)) / 2;
}

double quantile(samples_t samples, double share) {
  const auto place = samples.begin() +
                     static_cast<std::ptrdiff_t>(share * static_cast<double>(samples.size() - 1));
  std::nth_element(samples.begin(), place, samples.end());
  return *place;
}

double ratio(const samples_t& a, const samples_t& b) {
  samples_t ratios(a.size());
  std::transform(a.begin(), a.end(), b.begin(), ratios.begin(), std::divides<>());
  return median(std::move(ratios));
}

} // namespace com::velanto::connectivity::bench
