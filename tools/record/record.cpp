#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

const char* nameOf(Outcome outcome) noexcept {
  switch (outcome) {
    case Outcome::converted:
      return "converted";
    case Outcome::passed:
      return "passed";
    case Outcome::dropped:
      return "dropped";
    case Outcome::malformed:
      return "malformed";
  }
  return "";
}

} // namespace com::velanto::connectivity::tools
