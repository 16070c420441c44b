#include "tools/host/host_library.hpp"

#include <dlfcn.h>

#include "standin/standin.h"

namespace com::velanto::connectivity::tools {

namespace {

// Null when no loaded library has a function of that name. The type comes from the declaration,
// which alone does not make the linker ask for the function.
template <class Function>
Function* find(const char* name) noexcept {
  return reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
}

} // namespace

std::optional<std::int64_t> liveBlocks() noexcept {
  using function_t = decltype(standin_live_blocks_total);
  auto* const function = find<function_t>("standin_live_blocks_total");
  if (function == nullptr) return std::nullopt;
  return function();
}

bool setLogLevel(vlt_log_level_t level) noexcept {
  using function_t = decltype(standin_set_default_log_level);
  auto* const function = find<function_t>("standin_set_default_log_level");
  if (function == nullptr) return false;
  function(level);
  return true;
}

bool setLogSink(log_sink_t sink, void* context) noexcept {
  using function_t = decltype(standin_set_log_sink);
  auto* const function = find<function_t>("standin_set_log_sink");
  if (function == nullptr) return false;
  function(sink, context);
  return true;
}

} // namespace com::velanto::connectivity::tools
