// The place of a measurement, without which its figures mean nothing, and whether this build may
// measure.
#ifndef VLT_BENCH_ENVIRONMENT_HPP
#define VLT_BENCH_ENVIRONMENT_HPP

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace com::velanto::connectivity::bench {

// Name and value: machine, system, compiler, build, libraries, load.
using environment_t = std::vector<std::pair<std::string, std::string>>;

[[nodiscard]] environment_t environment();

// Makes the C library's heap keep freed memory instead of returning it to the system after each
// batch. A host that goes on receiving would keep it too, and the cost of system calls would hide
// the cost of the contenders. Call before the first thread starts.
void keepHeap() noexcept;

// Why times of this build would mislead; nothing when they do not.
[[nodiscard]] std::optional<std::string> reasonNotToTime();

} // namespace com::velanto::connectivity::bench

#endif
