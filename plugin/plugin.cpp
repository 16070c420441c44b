#include "plugin/plugin.hpp"

#include "host/status.h"

namespace com::velanto::connectivity {

Plugin::Plugin(const PluginConstructorParameters& params)
    : handle1(params.getFirstHandle()),
      handle2(params.getSecondHandle()),
      logger(loggerCategory(params.getPluginName(), params.getChainId())) {}

Plugin::~Plugin() {
  if (userStatusReporter && !userStatusReporter->pending.empty()) {
    vlt_set_user_status_map(userStatusReporter->handle, userStatusReporter->pending.table());
  }
}

} // namespace com::velanto::connectivity
