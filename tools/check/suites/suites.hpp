// The suites, one a file of this folder. A check is a row of its suite's table.
#ifndef VLT_TOOLS_CHECK_SUITES_SUITES_HPP
#define VLT_TOOLS_CHECK_SUITES_SUITES_HPP

#include <array>
#include <span>

#include "tools/check/check.hpp"

namespace com::velanto::connectivity::tools::check {

using suite_t = std::span<const check_t>;

[[nodiscard]] suite_t libraryChecks();
[[nodiscard]] suite_t loadingChecks();
[[nodiscard]] suite_t versionsChecks();
[[nodiscard]] suite_t configurationChecks();
[[nodiscard]] suite_t lifecycleChecks();
[[nodiscard]] suite_t nullsChecks();
[[nodiscard]] suite_t batchesChecks();
[[nodiscard]] suite_t conformanceChecks();
[[nodiscard]] suite_t logChecks();
[[nodiscard]] suite_t ownershipChecks();
[[nodiscard]] suite_t memoryChecks();
[[nodiscard]] suite_t threadsChecks();
[[nodiscard]] suite_t randomChecks();
[[nodiscard]] suite_t passingChecks();
[[nodiscard]] suite_t recordingChecks();

// In the order in which they run.
[[nodiscard]] inline std::array<suite_t, 15> suites() {
  return {libraryChecks(),   loadingChecks(),   versionsChecks(), configurationChecks(),
          lifecycleChecks(), nullsChecks(),     batchesChecks(),  conformanceChecks(),
          logChecks(),       ownershipChecks(), memoryChecks(),   threadsChecks(),
          randomChecks(),    passingChecks(),   recordingChecks()};
}

} // namespace com::velanto::connectivity::tools::check

#endif
