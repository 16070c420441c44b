// A check: a name, its claim about a library, and its test.
#ifndef VLT_TOOLS_CHECK_CHECK_HPP
#define VLT_TOOLS_CHECK_CHECK_HPP

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "tools/check/trial.hpp"

namespace com::velanto::connectivity::tools::check {

// The code of a check.
enum class Use { READ, LOAD };

struct check_t {
  const char* name;  // suite.behaviour
  const char* claim; // a property of a good library; half a line
  std::function<void(Trial&)> run;
  Use use = Use::LOAD;
};

// All checks, in the order of their runs: first the ones that others build on.
[[nodiscard]] const std::vector<check_t>& allChecks();

// The checks whose names match one of `only` (all, if there is none) and none of `skip`. As in a
// shell, * in a pattern matches any string, ? one character. Throws std::runtime_error when a
// pattern matches no check at all, or nothing is left.
[[nodiscard]] std::vector<check_t> select(std::span<const check_t> checks,
                                          const std::vector<std::string>& only,
                                          const std::vector<std::string>& skip);

} // namespace com::velanto::connectivity::tools::check

#endif
