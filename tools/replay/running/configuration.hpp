// The configuration that the plug-in gets: of a file, of the options, or of both, of which the
// options win.
#ifndef VLT_TOOLS_REPLAY_RUNNING_CONFIGURATION_HPP
#define VLT_TOOLS_REPLAY_RUNNING_CONFIGURATION_HPP

#include <ostream>

#include "tools/options/replay_options.hpp"
#include "value/data_t.hpp"

namespace com::velanto::connectivity::tools {

// Without a file there always is a tenant, if only the empty one; with a file only what it or the
// options name, so that the plug-in refuses what it would refuse in a host. Throws as
// readConfiguration does.
[[nodiscard]] data_t configurationOf(const ReplayOptions& options);

// Creates, starts and ends a plug-in with the configuration, as a host would, and says on
// `diagnostics` why that fails, which keys are unknown, which values are silently replaced by a
// default, and whether the tenant is empty; on `out` whether all is fine. Returns EXIT_FINE, also
// for an empty tenant, which is allowed, or EXIT_PLUGIN. Throws as readConfiguration does, and
// PluginError when the plug-in cannot be loaded.
int checkConfiguration(const ReplayOptions& options, std::ostream& out, std::ostream& diagnostics);

} // namespace com::velanto::connectivity::tools

#endif
