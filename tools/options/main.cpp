// Writes one file of a tool's manual, when the tools are built:
//
//   make-manual page TOOL PROSE FILE     the man page, from the prose in the file PROSE
//   make-manual completion TOOL FILE     the completion for bash
//
// FILE is not touched when something is wrong, so that no build takes a part of it for done.
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/options/check_plugin_options.hpp"
#include "tools/options/completion.hpp"
#include "tools/options/man_page.hpp"
#include "tools/options/replay_options.hpp"

namespace {

std::string contentsOf(const std::string& path) {
  std::ifstream file(path);
  std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) throw std::runtime_error("cannot read " + path);
  return text;
}

// The tool of that name; its options set unused variables.
com::velanto::connectivity::tools::tool_t toolNamed(const std::string& name) {
  using namespace com::velanto::connectivity::tools;
  static ReplayOptions replay;
  static check::command_t check_plugin;
  if (name == REPLAY_NAME) return replayTool(replay);
  if (name == check::PROGRAM_NAME) return checkPluginTool(check_plugin);
  throw std::invalid_argument("there is no tool '" + name + "'");
}

std::string make(const std::vector<std::string>& arguments) {
  using namespace com::velanto::connectivity::tools;
  if (arguments.size() == 4 && arguments[0] == "page") {
    return manPage(toolNamed(arguments[1]), contentsOf(arguments[2]));
  }
  if (arguments.size() == 3 && arguments[0] == "completion") {
    return bashCompletion(toolNamed(arguments[1]));
  }
  throw std::invalid_argument("usage: make-manual page TOOL PROSE FILE | completion TOOL FILE");
}

void write(const std::string& path, const std::string& text) {
  std::ofstream file(path);
  file << text << std::flush;
  if (!file) throw std::runtime_error("cannot write " + path);
}

} // namespace

int main(int argc, char** argv) {
  try {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const std::string text = make(arguments);
    write(arguments.back(), text);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "make-manual: " << error.what() << '\n';
    return 1;
  }
}
