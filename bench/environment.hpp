// Where a measurement was taken, without which its figures mean nothing, and whether this program is
// one to measure with.
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

// Makes the C library's heap keep what is freed instead of handing it back to the system after each
// batch: a host that goes on receiving would not give it back either, and what system calls cost
// would hide what is measured. Call before the first thread starts.
void keepHeap() noexcept;

// Why times of this build would mislead; nothing when they do not.
[[nodiscard]] std::optional<std::string> reasonNotToTime();

} // namespace com::velanto::connectivity::bench

#endif
