#include "bench/suites/parallel_contenders.hpp"

#include <algorithm>

namespace com::velanto::connectivity::bench {

ParallelContenders::ParallelContenders(std::vector<std::unique_ptr<Contender>> members)
    : members_(std::move(members)),
      spans_(members_.size()),
      begin_(static_cast<std::ptrdiff_t>(members_.size()) + 1),
      run_(static_cast<std::ptrdiff_t>(members_.size())),
      done_(static_cast<std::ptrdiff_t>(members_.size()) + 1) {
  for (std::size_t i = 0; i < members_.size(); ++i) {
    threads_.emplace_back([this, i]() noexcept { work(i); });
  }
}

ParallelContenders::~ParallelContenders() {
  ending_ = true;
  begin_.arrive_and_wait();
}

void ParallelContenders::work(std::size_t member) {
  for (;;) {
    begin_.arrive_and_wait();
    if (ending_) return;
    members_[member]->fill(orderOfRound(members_[member]->size(), round_));
    run_.arrive_and_wait();
    spans_[member].start = Clock::now();
    members_[member]->run();
    spans_[member].end = Clock::now();
    done_.arrive_and_wait();
  }
}

double ParallelContenders::sample(std::size_t round) {
  round_ = round;
  begin_.arrive_and_wait();
  done_.arrive_and_wait();
  Clock::time_point start = spans_.front().start;
  Clock::time_point end = spans_.front().end;
  for (const span_t& span : spans_) {
    start = std::min(start, span.start);
    end = std::max(end, span.end);
  }
  return std::chrono::duration<double, std::nano>(end - start).count();
}

} // namespace com::velanto::connectivity::bench
