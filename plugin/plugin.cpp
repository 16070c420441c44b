#include "plugin/plugin.hpp"

#include "host/status.h"

namespace com::velanto::connectivity {

Plugin::Plugin(const PluginConstructorParameters& params)
    : logger_(loggerCategory(params.getPluginName(), params.getChainId())),
      handle1_(params.getFirstHandle()),
      handle2_(params.getSecondHandle()) {}

Plugin::~Plugin() {
  if (userStatusReporter && !userStatusReporter->pending.empty()) {
    vlt_set_user_status_map(userStatusReporter->handle, userStatusReporter->pending.table());
  }
}

} // namespace com::velanto::connectivity
