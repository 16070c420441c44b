// Reads the arguments of a program by the table of its options.
#ifndef VLT_TOOLS_OPTIONS_PARSER_HPP
#define VLT_TOOLS_OPTIONS_PARSER_HPP

#include <ostream>

#include "tools/options/options.hpp"

namespace com::velanto::connectivity::tools {

// Sets the targets; `arguments` are those of main. False: help or version is all that was asked for,
// and is in `out`. Throws std::runtime_error, which says what is wrong with the arguments.
[[nodiscard]] bool parse(const tool_t& tool, int count, const char* const* arguments,
                         std::ostream& out);

} // namespace com::velanto::connectivity::tools

#endif
