// The description of a tool's command line. The parser, the help, the man page and the completion
// come from it.
#ifndef VLT_TOOLS_OPTIONS_OPTIONS_HPP
#define VLT_TOOLS_OPTIONS_OPTIONS_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "host/types.h"

namespace com::velanto::connectivity::tools {

// The target of an option: a count is at least 1, a double a time limit in seconds, a vector takes
// every use of a repeated option. Nothing: the parser itself obeys the option.
using target_t = std::variant<std::monostate, bool*, std::string*, std::optional<std::string>*,
                              std::vector<std::string>*, std::size_t*, double*,
                              std::optional<std::uint64_t>*, std::optional<vlt_log_level_t>*>;

struct option_row_t {
  const char* name; // with its dashes
  // As help shows it; "a|b|…" are the only values allowed; empty: no argument. "[=a|b]" is
  // optional; without it, the first applies.
  const char* argument;
  const char* help;
  target_t target;
};

struct option_group_t {
  const char* title;
  std::vector<option_row_t> rows;
};

struct example_row_t {
  const char* command; // as typed into a shell
  const char* purpose;
};

struct status_row_t {
  int status;
  const char* meaning;
};

// The targets must outlive it.
struct tool_t {
  const char* name;
  std::span<const example_row_t> examples; // the beginning of --help
  const char* introduction;
  const char* operands; // the arguments that are no options, and their target
  target_t operands_target;
  std::vector<option_group_t> groups; // the last one: help and version
  const char* title_of_statuses;
  std::span<const status_row_t> statuses;
};

inline const option_group_t ABOUT_THE_TOOL = {"About the tool",
                                              {{"--help", "", "show the help and exit", {}},
                                               {"--version", "", "show the version and exit", {}}}};

} // namespace com::velanto::connectivity::tools

#endif
