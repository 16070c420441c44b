// The names of all tests of the project as ctest has them, read from the sources: a program that is
// not built yet has told ctest of none.
#ifndef VLT_TESTS_DOCS_TEST_NAMES_HPP
#define VLT_TESTS_DOCS_TEST_NAMES_HPP

#include <string>
#include <vector>

namespace com::velanto::connectivity::test {

// "PROGRAM.Suite.Test" for each test of each program, and the names of other tests of ctest.
[[nodiscard]] std::vector<std::string> testNames();

} // namespace com::velanto::connectivity::test

#endif
