#include "tools/options/program.hpp"

#include <stdexcept>

#include "tools/options/check_plugin_options.hpp"
#include "tools/options/exit_status.hpp"
#include "tools/options/replay_options.hpp"

namespace com::velanto::connectivity::tools::manual {

namespace {

template <class Rows>
std::vector<option_t> optionsOf(const Rows& rows) {
  std::vector<option_t> options;
  options.reserve(rows.size());
  for (const auto& row : rows) options.push_back({row.name, row.argument, row.help});
  return options;
}

template <class Rows>
std::vector<example_t> examplesOf(const Rows& rows) {
  std::vector<example_t> examples;
  examples.reserve(rows.size());
  for (const auto& row : rows) examples.push_back({row.command, row.purpose});
  return examples;
}

template <class Rows>
std::vector<exit_status_t> statusesOf(const Rows& rows) {
  std::vector<exit_status_t> statuses;
  statuses.reserve(rows.size());
  for (const auto& row : rows) statuses.push_back({row.status, row.meaning});
  return statuses;
}

group_t aboutTheTool() {
  return {
      "About the tool",
      {{"--help", "", "show the help and exit"}, {"--version", "", "show the version and exit"}}};
}

} // namespace

program_t describe(const std::string& name) {
  program_t program{name, {}, {}, {}};
  if (name == REPLAY_NAME) {
    program.examples = examplesOf(exampleTable());
    for (const auto& group : optionTable()) {
      program.groups.push_back({group.title, optionsOf(group.rows)});
    }
    program.statuses = statusesOf(EXIT_STATUSES);
  } else if (name == check::PROGRAM_NAME) {
    program.examples = examplesOf(check::exampleTable());
    program.groups.push_back({"The checks", optionsOf(check::optionTable())});
    program.statuses = statusesOf(check::statusTable());
  } else {
    throw std::invalid_argument("there is no tool '" + name + "'");
  }
  program.groups.push_back(aboutTheTool());
  return program;
}

} // namespace com::velanto::connectivity::tools::manual
