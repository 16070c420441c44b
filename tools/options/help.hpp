// The output of --help; at most 80 columns.
#ifndef VLT_TOOLS_OPTIONS_HELP_HPP
#define VLT_TOOLS_OPTIONS_HELP_HPP

#include <string>

#include "tools/options/options.hpp"

namespace com::velanto::connectivity::tools {

[[nodiscard]] std::string helpText(const tool_t& tool);

} // namespace com::velanto::connectivity::tools

#endif
