// What man pages and completions need to know of a tool, taken from the tables that its command
// line and its help are made from. Nothing here is written down a second time.
#ifndef VLT_TOOLS_OPTIONS_PROGRAM_HPP
#define VLT_TOOLS_OPTIONS_PROGRAM_HPP

#include <string>
#include <vector>

namespace com::velanto::connectivity::tools::manual {

struct option_t {
  std::string name;     // with its dashes
  std::string argument; // as in the tools' tables: "FILE", "a|b", "[=a|b]", or empty for none
  std::string help;
};

struct group_t {
  std::string title;
  std::vector<option_t> options;
};

struct example_t {
  std::string command;
  std::string purpose;
};

struct exit_status_t {
  int status;
  std::string meaning;
};

struct program_t {
  std::string name;
  std::vector<example_t> examples;
  std::vector<group_t> groups; // the last one: help and version
  std::vector<exit_status_t> statuses;
};

// The tool of that name; throws std::invalid_argument when there is none.
[[nodiscard]] program_t describe(const std::string& name);

} // namespace com::velanto::connectivity::tools::manual

#endif
