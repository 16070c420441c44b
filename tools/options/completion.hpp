// A tool's completion for bash: options, their fixed values, and files where files belong.
#ifndef VLT_TOOLS_OPTIONS_COMPLETION_HPP
#define VLT_TOOLS_OPTIONS_COMPLETION_HPP

#include <string>

#include "tools/options/options.hpp"

namespace com::velanto::connectivity::tools {

// The script, which bash reads once and asks from then on. Throws std::invalid_argument for an
// argument without an entry in ARGUMENTS of completion.cpp.
[[nodiscard]] std::string bashCompletion(const tool_t& tool);

} // namespace com::velanto::connectivity::tools

#endif
