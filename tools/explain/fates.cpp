#include "tools/explain/fates.hpp"

namespace com::velanto::connectivity::tools {

const char* nameOf(Fate fate) noexcept {
  switch (fate) {
    case Fate::UNCHANGED:
      return "unchanged";
    case Fate::RENAMED:
      return "renamed";
    case Fate::GATHERED:
      return "gathered";
    case Fate::COPIED:
      return "copied";
    case Fate::CONVERTED:
      return "converted";
    case Fate::REPLACED:
      return "replaced";
    case Fate::ADDED:
      return "added";
    case Fate::LOST:
      return "lost";
    case Fate::UNKNOWN:
      return "unknown";
  }
  return "";
}

const char* nameOf(Without without) noexcept {
  switch (without) {
    case Without::SAME:
      return "same";
    case Without::DROPPED:
      return "dropped";
    case Without::PASSED:
      return "passed";
    case Without::DIFFERENT:
      return "different";
  }
  return "";
}

} // namespace com::velanto::connectivity::tools
