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

bool sameBatch(const record_t& one, const record_t& other) noexcept {
  if (!one.recorded || !other.recorded) return false;
  const bool same_run = one.run == other.run ||
                        (one.run != nullptr && other.run != nullptr && *one.run == *other.run);
  return same_run && one.recorded->batch == other.recorded->batch &&
         one.recorded->direction == other.recorded->direction;
}

} // namespace com::velanto::connectivity::tools
