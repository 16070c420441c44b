#include "tools/explain/fates.hpp"

namespace com::velanto::connectivity::tools {

const char* nameOf(Fate fate) noexcept {
  switch (fate) {
    case Fate::unchanged:
      return "unchanged";
    case Fate::renamed:
      return "renamed";
    case Fate::gathered:
      return "gathered";
    case Fate::copied:
      return "copied";
    case Fate::converted:
      return "converted";
    case Fate::replaced:
      return "replaced";
    case Fate::added:
      return "added";
    case Fate::lost:
      return "lost";
    case Fate::unknown:
      return "unknown";
  }
  return "";
}

const char* nameOf(Without without) noexcept {
  switch (without) {
    case Without::same:
      return "same";
    case Without::dropped:
      return "dropped";
    case Without::passed:
      return "passed";
    case Without::different:
      return "different";
  }
  return "";
}

} // namespace com::velanto::connectivity::tools
