// The switch by which a person in the field turns the iterator checks off, turned for a scope.
#ifndef VLT_TESTS_VALUE_SKIPPED_CHECKS_HPP
#define VLT_TESTS_VALUE_SKIPPED_CHECKS_HPP

#include <cstdlib>

namespace com::velanto::connectivity::test {

class SkippedChecks {
 public:
  explicit SkippedChecks(const char* setting = "1") {
    setenv("TV_SKIP_DATA_T_ITERATOR_CHECKS", setting, 1);
  }
  SkippedChecks(const SkippedChecks&) = delete;
  SkippedChecks& operator=(const SkippedChecks&) = delete;
  ~SkippedChecks() { unsetenv("TV_SKIP_DATA_T_ITERATOR_CHECKS"); }
};

} // namespace com::velanto::connectivity::test

#endif
