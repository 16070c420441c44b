// Plays the cases of the conformance files against a plug-in library.
#ifndef VLT_TOOLS_CHECK_CONFORMANCE_PLAYER_HPP
#define VLT_TOOLS_CHECK_CONFORMANCE_PLAYER_HPP

#include "tools/check/conformance/case.hpp"
#include "tools/check/trial.hpp"
#include "tools/host/plugin_library.hpp"

namespace com::velanto::connectivity::tools::check {

// The expectations of a build. Required: of any build. Advised: also this project's own decisions,
// which are cases marked as advised, and the wording on standard error.
enum class Demand { REQUIRED, ADVISED };

// Plays one case from create to destroy, as the only user of the host's log, and checks all that
// README.md lists.
void play(Trial& trial, const PluginLibrary& library, const line_t& line, Demand demand);

} // namespace com::velanto::connectivity::tools::check

#endif
