// A tool's man page: prose from TOOL.1.in, with the tool's tables in between.
#ifndef VLT_TOOLS_OPTIONS_MAN_PAGE_HPP
#define VLT_TOOLS_OPTIONS_MAN_PAGE_HPP

#include <string>

#include "tools/options/options.hpp"

namespace com::velanto::connectivity::tools {

// Fills the prose. A line "@EXAMPLES@", "@OPTIONS@" or "@EXIT_STATUS@" becomes that table.
// Anywhere, "@VERSION@" becomes the version, and "@LIB@" the folder of the libraries below the
// prefix. Throws std::invalid_argument for any other name between two @, and for a missing table.
[[nodiscard]] std::string manPage(const tool_t& tool, const std::string& prose);

// `text` as roff shows it: dashes fit for a shell, nothing taken for a command.
[[nodiscard]] std::string roff(const std::string& text);

} // namespace com::velanto::connectivity::tools

#endif
