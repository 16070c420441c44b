#include "tools/options/completion.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <stdexcept>
#include <string_view>

namespace com::velanto::connectivity::tools {

namespace {

// Commands of the script for the values of an argument. Without any there is no completion: it
// cannot guess a number or a free string, and names of files would be wrong.
struct argument_row_t {
  std::string_view name;
  std::string_view commands;
};

constexpr std::string_view FILES = "compopt -o default";
constexpr std::array ARGUMENTS = {
    argument_row_t{"PATH", FILES},
    argument_row_t{"FILE", FILES},
    argument_row_t{"FOLDER", "compopt -o dirnames"},
    argument_row_t{"RECORDING", FILES},
    argument_row_t{"LEVEL", "words='2 3 6'"},
    // The tool itself knows its checks; it lists them without loading anything.
    argument_row_t{"PATTERN", "words=$(\"$1\" --list 2>/dev/null | cut -d ' ' -f 1)"},
    argument_row_t{"TEXT", ""},
    argument_row_t{"FIELDS", ""},
    argument_row_t{"COUNT", ""},
    argument_row_t{"MIB", ""},
    argument_row_t{"SECONDS", ""},
    argument_row_t{"N", ""},
};

std::string choices(std::string alternatives) {
  std::replace(alternatives.begin(), alternatives.end(), '|', ' ');
  return "words='" + alternatives + "'";
}

std::string commandsFor(const option_row_t& option) {
  const std::string argument = option.argument;
  if (argument.find('|') != std::string::npos) return choices(argument);
  const auto* const row = std::find_if(ARGUMENTS.begin(), ARGUMENTS.end(),
                                       [&](const auto& each) { return each.name == argument; });
  if (row == ARGUMENTS.end()) {
    throw std::invalid_argument("it is not known what completes the " + argument + " of " +
                                option.name);
  }
  return std::string(row->commands);
}

// Options with the same argument share a branch.
std::string branches(const std::map<std::string, std::string>& options_by_commands) {
  std::string text;
  for (const auto& [commands, options] : options_by_commands) {
    text += "    " + options + ")" + (commands.empty() ? "" : " " + commands) + " ;;\n";
  }
  return text;
}

void addTo(std::map<std::string, std::string>& options_by_commands, const std::string& commands,
           const std::string& option) {
  std::string& options = options_by_commands[commands];
  options += (options.empty() ? "" : " | ") + option;
}

constexpr std::string_view OPENING = R"(() {
  local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} words='' is_attached=''
  COMPREPLY=()
  # Bash hands over --option=VALUE as three words, and an empty VALUE as two.
  if [[ $word == = ]]; then
    word='' is_attached=yes
  elif [[ $option == = ]]; then
    option=${COMP_WORDS[COMP_CWORD - 2]} is_attached=yes
  fi
  case $is_attached$option in
)";

constexpr std::string_view BEFORE_OPTIONS = R"(    yes*) ;;
    *)
      if [[ $word == -* ]]; then
        words=')";

constexpr std::string_view CLOSING = R"('
      else
        compopt -o default
      fi
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
)";

} // namespace

std::string bashCompletion(const tool_t& tool) {
  std::map<std::string, std::string> arguments;
  std::string words;
  for (const option_group_t& group : tool.groups) {
    for (const option_row_t& option : group.rows) {
      words += std::string(words.empty() ? "" : " ") + option.name;
      const std::string argument = option.argument;
      if (argument.starts_with("[=")) {
        addTo(arguments, choices(argument.substr(2, argument.size() - 3)),
              std::string("yes") + option.name);
      } else if (!argument.empty()) {
        addTo(arguments, commandsFor(option), std::string(option.name) + " | yes" + option.name);
      }
    }
  }
  const std::string name = tool.name;
  std::string function = "_" + name;
  std::replace(function.begin(), function.end(), '-', '_');
  std::string script = "# Completion of " + name + " in bash, made from its options.\n";
  script += function;
  script += OPENING;
  script += branches(arguments);
  script += BEFORE_OPTIONS;
  script += words;
  script += CLOSING;
  return script + "complete -F " + function + " " + name + "\n";
}

} // namespace com::velanto::connectivity::tools
