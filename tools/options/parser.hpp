// Reads the arguments of a program by the table of its options.
#ifndef VLT_TOOLS_OPTIONS_PARSER_HPP
#define VLT_TOOLS_OPTIONS_PARSER_HPP

#include <ostream>

#include "tools/options/options.hpp"

namespace com::velanto::connectivity::tools {

// Sets the targets from main's `arguments`. False: they ask for help or version alone, which is in
// `out`. Throws std::runtime_error, which names the fault of the arguments.
[[nodiscard]] bool parse(const tool_t& tool, int count, const char* const* arguments,
                         std::ostream& out);

} // namespace com::velanto::connectivity::tools

#endif
