#include "fuzz/finding.hpp"

#include <unistd.h>

#include <cstdlib>

namespace com::velanto::connectivity::fuzz {

namespace {

const int AT_START = dup(STDERR_FILENO);

} // namespace

void note(const std::string& text) {
  const std::string line = text + "\n";
  // A failed write of this line is no reason to stop.
  [[maybe_unused]] const ssize_t written = write(AT_START, line.data(), line.size());
}

void reportFinding(const std::string& text) {
  note("FINDING: " + text);
  std::abort();
}

} // namespace com::velanto::connectivity::fuzz
