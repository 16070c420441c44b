// The output of a shell's command, standard error included.
#ifndef VLT_TESTS_TOOLS_OPTIONS_COMMAND_OUTPUT_HPP
#define VLT_TESTS_TOOLS_OPTIONS_COMMAND_OUTPUT_HPP

#include <string>
#include <vector>

namespace com::velanto::connectivity::test {

// `command` goes to bash. A command that fails adds a line "status N".
[[nodiscard]] std::string outputOf(const std::string& command);

[[nodiscard]] std::vector<std::string> linesOf(const std::string& text);

} // namespace com::velanto::connectivity::test

#endif
