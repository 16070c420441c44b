// Counts the throws of the code in the test program. Throws of libraries that it loads do not
// count, unless they find the program's symbols first.
#ifndef VLT_TESTS_SUPPORT_EXCEPTIONS_THROWN_HPP
#define VLT_TESTS_SUPPORT_EXCEPTIONS_THROWN_HPP

#include <cstdint>

namespace com::velanto::connectivity::test {

// Exceptions thrown so far, on all threads; one that is thrown again does not count again.
[[nodiscard]] std::int64_t exceptionsThrown() noexcept;

} // namespace com::velanto::connectivity::test

#endif
