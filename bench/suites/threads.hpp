// The lanes of a suite on one thread and on two.
#ifndef VLT_BENCH_SUITES_THREADS_HPP
#define VLT_BENCH_SUITES_THREADS_HPP

#include <functional>

#include "bench/runner.hpp"

namespace com::velanto::connectivity::bench {

using make_contender_t = std::function<std::unique_ptr<Contender>()>;

// Adds "NAME, 1 thread" and "NAME, 2 threads", each thread with a contender of its own. Nanoseconds
// per message of one thread.
void addThreadLanes(std::vector<lane_t>& lanes, const std::string& name,
                    const make_contender_t& make);

} // namespace com::velanto::connectivity::bench

#endif
