// Runs code while memory runs out: first without its first allocation, then without its second, and
// so on until every allocation succeeds.
#ifndef VLT_TESTS_SUPPORT_FAILING_ALLOCATIONS_HPP
#define VLT_TESTS_SUPPORT_FAILING_ALLOCATIONS_HPP

#include <gtest/gtest.h>

#include <cstdint>
#include <new>

#include "standin/standin.h"

namespace com::velanto::connectivity::test {

// `attempt` must throw std::bad_alloc exactly when the host refuses an allocation; `verify` runs
// after each attempt, with all allocations allowed again. Returns the number of attempts that
// failed, which is the number of allocations of a complete one.
template <class Attempt, class Verify>
std::uint64_t failEachAllocation(const Attempt& attempt, const Verify& verify) {
  for (std::uint64_t n = 1;; ++n) {
    standin_fail_allocation(n);
    bool threw = false;
    try {
      attempt();
    } catch (const std::bad_alloc&) {
      threw = true;
    }
    standin_fail_allocation(0);
    const bool refused = standin_failed_allocations() > 0;
    EXPECT_EQ(threw, refused) << "allocation " << n;
    verify();
    if (!refused) return n - 1;
  }
}

} // namespace com::velanto::connectivity::test

#endif
