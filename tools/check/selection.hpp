// The checks that there are, and the ones that a run is asked for.
#ifndef VLT_TOOLS_CHECK_SELECTION_HPP
#define VLT_TOOLS_CHECK_SELECTION_HPP

#include <span>
#include <string>
#include <vector>

#include "tools/check/check.hpp"

namespace com::velanto::connectivity::tools::check {

// All checks, in the order of their runs: first the ones that others build on.
[[nodiscard]] const std::vector<check_t>& allChecks();

// The ones among them for a codec or a recorder.
[[nodiscard]] std::vector<check_t> checksOf(Plugin plugin);

// The checks whose names match one of `only` (all, if there is none) and none of `skip`. As in a
// shell, * in a pattern matches any string, ? one character. Throws std::runtime_error when a
// pattern matches no check at all, or nothing is left.
[[nodiscard]] std::vector<check_t> select(std::span<const check_t> checks,
                                          const std::vector<std::string>& only,
                                          const std::vector<std::string>& skip);

} // namespace com::velanto::connectivity::tools::check

#endif
