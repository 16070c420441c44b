// How a fuzz target says that a check failed: one line, then the end of the process, which the
// fuzzer answers by keeping the input. A crash needs no such line, it has the sanitizers' report.
#ifndef VLT_FUZZ_FINDING_HPP
#define VLT_FUZZ_FINDING_HPP

#include <string>
#include <string_view>

namespace com::velanto::connectivity::fuzz {

// To the standard error of the program's start: the fuzzer may have closed it for the output of the
// code under test.
[[noreturn]] void reportFinding(const std::string& text);

// A line for the run's log, to the same place.
void note(const std::string& text);

// `difference` says how two things that must be the same differ, and is empty when they do not.
inline void requireNone(const std::string& difference, const char* what) {
  if (!difference.empty()) reportFinding(std::string(what) + ": " + difference);
}

inline void require(bool holds, const char* law) {
  if (!holds) reportFinding(std::string("broken: ") + law);
}

// A refusal is clear when it says something, and on one line.
inline void requireReason(std::string_view reason) {
  require(!reason.empty() && reason.find('\n') == std::string_view::npos, "a reason is one line");
}

} // namespace com::velanto::connectivity::fuzz

#endif
