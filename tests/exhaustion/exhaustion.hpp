// The ways in which memory runs out: the host's storage or the plug-in's own, for one allocation or
// for good.
#ifndef VLT_TESTS_EXHAUSTION_EXHAUSTION_HPP
#define VLT_TESTS_EXHAUSTION_EXHAUSTION_HPP

#include <array>
#include <cstdint>
#include <ostream>
#include <string>

#include "standin/standin.h"
#include "tests/support/allocations.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

// The reasons in reports: no memory; or the standard library's error, when the host had no memory
// for a string and handed out a null one.
inline const std::string NO_MEMORY = "std::bad_alloc";
inline const std::string NO_TEXT = errorOf([] {
  const char* volatile unrendered = nullptr;
  const std::string text(unrendered);
});

enum class memory_t { HOSTS, OWN };

struct exhaustion_t {
  const char* name;
  memory_t memory;
  bool for_good; // refuses every allocation from the n-th on, not the n-th alone
};

inline std::ostream& operator<<(std::ostream& out, const exhaustion_t& how) {
  return out << how.name;
}

inline constexpr std::array EXHAUSTIONS = {
    exhaustion_t{"OneOfTheHosts", memory_t::HOSTS, false},
    exhaustion_t{"TheHostsForGood", memory_t::HOSTS, true},
    exhaustion_t{"OneOfItsOwn", memory_t::OWN, false},
    exhaustion_t{"ItsOwnForGood", memory_t::OWN, true},
};

// While it lives, it refuses the n-th allocation on this thread; 0: none.
class Exhausted {
 public:
  Exhausted(const exhaustion_t& how, std::uint64_t n) noexcept {
    if (how.memory == memory_t::OWN) {
      failAllocation(n, how.for_good);
    } else if (how.for_good) {
      standin_fail_allocations_from(n);
    } else {
      standin_fail_allocation(n);
    }
  }
  Exhausted(const Exhausted&) = delete;
  Exhausted& operator=(const Exhausted&) = delete;
  ~Exhausted() {
    failAllocation(0, false);
    standin_fail_allocation(0);
  }
};

// Allocations refused since the last n above 0.
inline std::uint64_t refusals(const exhaustion_t& how) noexcept {
  return how.memory == memory_t::OWN ? refusedAllocations() : standin_failed_allocations();
}

} // namespace com::velanto::connectivity::test

#endif
