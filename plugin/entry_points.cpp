#include "plugin/entry_points.hpp"

#include <unwind.h>

#include "plugin/logger.hpp"

namespace com::velanto::connectivity::entry_points {

void reportFailedCreation(const char* plugin_name, const char* chain_id) noexcept {
  try {
    const Logger logger(loggerCategory(text_or_empty(plugin_name), text_or_empty(chain_id)));
    handleException(logger, 2, "create");
  } catch (...) { // NOLINT(bugprone-empty-catch): no memory for the report; it is lost
  }
}

void wakeUnwinder() noexcept {
  // It learns the sizes of registers with the first frame, so the walk ends there.
  _Unwind_Backtrace([](_Unwind_Context*, void*) { return _URC_END_OF_STACK; }, nullptr);
}

} // namespace com::velanto::connectivity::entry_points
