// The whole of a run: the selected checks on one library, one after the other.
#ifndef VLT_TOOLS_CHECK_CHECK_PLUGIN_HPP
#define VLT_TOOLS_CHECK_CHECK_PLUGIN_HPP

#include <ostream>
#include <span>

#include "tools/check/check.hpp"
#include "tools/check/runner.hpp"
#include "tools/options/check_plugin_options.hpp"

namespace com::velanto::connectivity::tools::check {

enum class Format { TEXT, COLOURED, JSON };

// Runs `checks` and reports on `out`; advised ones decide the status only when `strict`. When the
// library does not load, skips all checks that load it, and reports the reason instead. Returns a
// Status; throws std::system_error when the system does not give a check a process or a folder.
int checkPlugin(const run_settings_t& settings, std::span<const check_t> checks, bool strict,
                Format format, std::ostream& out);

} // namespace com::velanto::connectivity::tools::check

#endif
