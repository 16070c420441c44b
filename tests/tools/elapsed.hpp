// Makes figures comparable: the time that a replay took differs from run to run.
#ifndef VLT_TESTS_TOOLS_ELAPSED_HPP
#define VLT_TESTS_TOOLS_ELAPSED_HPP

#include <string>

#include "tests/support/pattern.hpp"

namespace com::velanto::connectivity::test {

// `text` with "T ms" for each time with three decimals.
inline std::string withoutElapsed(const std::string& text) {
  static const Pattern TIME(R"(\b[0-9]+\.[0-9]{3} ms\b)");
  return TIME.replacedIn(text, "T ms");
}

} // namespace com::velanto::connectivity::test

#endif
