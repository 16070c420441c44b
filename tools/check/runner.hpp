// Runs a check in a process of its own. So no damage by a library to its process (a crash, an
// endless loop, a damaged heap) reaches the checks after it.
//
//   (1) fork, with two shared files: for records and for the output of the library
//   (2) wait for the child, at most the time limit; then kill it
//   (3) judge its end
#ifndef VLT_TOOLS_CHECK_RUNNER_HPP
#define VLT_TOOLS_CHECK_RUNNER_HPP

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "tools/check/trial.hpp"
#include "tools/check/verdict.hpp"

namespace com::velanto::connectivity::tools::check {

struct run_settings_t {
  subject_t subject;
  std::uint64_t seed = 0;
  std::chrono::milliseconds time_limit{};
};

// `body` runs in the child; an exception that leaves it is a mismatch. The caller must be the only
// thread of its process. Throws std::system_error when there is no process to be had.
[[nodiscard]] verdict_t runInChild(const run_settings_t& settings,
                                   const std::function<void(Trial&)>& body);

} // namespace com::velanto::connectivity::tools::check

#endif
