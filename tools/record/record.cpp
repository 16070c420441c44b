#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

const char* nameOf(Outcome outcome) noexcept {
  switch (outcome) {
    case Outcome::CONVERTED:
      return "converted";
    case Outcome::PASSED:
      return "passed";
    case Outcome::DROPPED:
      return "dropped";
    case Outcome::MALFORMED:
      return "malformed";
  }
  return "";
}

} // namespace com::velanto::connectivity::tools
