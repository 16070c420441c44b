// A check: a name, what it claims about a library, and how that is found out.
#ifndef VLT_TOOLS_CHECK_CHECK_HPP
#define VLT_TOOLS_CHECK_CHECK_HPP

#include <span>
#include <string>
#include <vector>

#include "tools/check/trial.hpp"

namespace com::velanto::connectivity::tools::check {

// What a check does with the library.
enum class Use { read, load };

struct check_t {
  const char* name;  // suite.behaviour
  const char* claim; // what holds of a good library; half a line
  void (*run)(Trial& trial);
  Use use = Use::load;
};

// All checks, in the order in which they run: first what the others build on.
[[nodiscard]] const std::vector<check_t>& allChecks();

// Those of `checks` whose names match one of `only` (all, if there is none) and none of `skip`.
// Patterns are those of a shell: * stands for any text, ? for one character. Throws
// std::runtime_error when a pattern matches no check at all, or nothing is left.
[[nodiscard]] std::vector<check_t> select(std::span<const check_t> checks,
                                          const std::vector<std::string>& only,
                                          const std::vector<std::string>& skip);

} // namespace com::velanto::connectivity::tools::check

#endif
