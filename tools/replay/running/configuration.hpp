// The configuration that the plug-in gets: of a file, of the options, or of both; options come
// first.
#ifndef VLT_TOOLS_REPLAY_RUNNING_CONFIGURATION_HPP
#define VLT_TOOLS_REPLAY_RUNNING_CONFIGURATION_HPP

#include <ostream>

#include "tools/options/replay_options.hpp"
#include "value/data_t.hpp"

namespace com::velanto::connectivity::tools {

// Without a file there always is a tenant, if only the empty one. With a file there are only the
// entries of file and options, so the plug-in refuses the same as in a host. Throws as
// readConfiguration does.
[[nodiscard]] data_t configurationOf(const ReplayOptions& options);

// Creates, starts and ends a plug-in with the configuration, as a host would. Says on `diagnostics`
// why that fails, which keys are unknown, which values are of a wrong kind, and whether a text is
// empty. Says on `out` whether all is fine. Returns EXIT_FINE, also for an empty tenant, which is a
// warning, or EXIT_PLUGIN. Throws as readConfiguration does, and PluginError when the plug-in does not load.
int checkConfiguration(const ReplayOptions& options, std::ostream& out, std::ostream& diagnostics);

} // namespace com::velanto::connectivity::tools

#endif
