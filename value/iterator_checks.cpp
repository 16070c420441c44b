#include "value/iterator_checks.hpp"

#include <cstdlib>
#include <stdexcept>

namespace com::velanto::connectivity::iterator_checks {

void fail(const char* text) {
  // Read at every fault, not once: the switch takes effect while the process runs.
  if (std::getenv("TV_SKIP_DATA_T_ITERATOR_CHECKS") == nullptr) throw std::runtime_error(text);
}

} // namespace com::velanto::connectivity::iterator_checks
