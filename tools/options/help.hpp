// The help text, made from the tables of examples, options and exit statuses; at most 80 columns.
#ifndef VLT_TOOLS_OPTIONS_HELP_HPP
#define VLT_TOOLS_OPTIONS_HELP_HPP

#include <string>

namespace com::velanto::connectivity::tools {

[[nodiscard]] std::string helpText();

} // namespace com::velanto::connectivity::tools

#endif
