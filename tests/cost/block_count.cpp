// Compiled without the calls that it receives.
#include "tests/cost/block_count.hpp"

static std::uint64_t entered = 0;

// The name that both compilers call.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" void __sanitizer_cov_trace_pc();
extern "C" void __sanitizer_cov_trace_pc() { ++entered; }

namespace com::velanto::connectivity::test {

std::uint64_t blocksEntered() noexcept { return entered; }

} // namespace com::velanto::connectivity::test
