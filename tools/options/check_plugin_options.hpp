// The options of ostrovia-check-plugin, and its exit statuses.
#ifndef VLT_TOOLS_OPTIONS_CHECK_PLUGIN_OPTIONS_HPP
#define VLT_TOOLS_OPTIONS_CHECK_PLUGIN_OPTIONS_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/options/options.hpp"

namespace com::velanto::connectivity::tools::check {

inline constexpr const char* PROGRAM_NAME = "ostrovia-check-plugin";

struct command_t {
  std::string path; // of the library
  std::vector<std::string> only;
  std::vector<std::string> skip;
  double timeout_seconds = 10;
  std::optional<std::uint64_t> seed;
  bool strict = false;
  bool list = false;
  bool json = false;
};

enum Status : int {
  STATUS_ALL_PASSED = 0,  // all that count
  STATUS_SOME_FAILED = 1, // or crashed, or hung
  STATUS_NOT_CHECKED = 2, // wrong use, or a library that does not load
};

// The tool; its options set `command`.
[[nodiscard]] tool_t checkPluginTool(command_t& command);

} // namespace com::velanto::connectivity::tools::check

#endif
