// Where recorded messages come from: files and standard input, each opened when its turn comes, so
// that any number of them can be named.
#ifndef VLT_TOOLS_REPLAY_INPUT_INPUTS_HPP
#define VLT_TOOLS_REPLAY_INPUT_INPUTS_HPP

#include <cstdint>
#include <functional>
#include <istream>
#include <memory>
#include <string>
#include <vector>

namespace com::velanto::connectivity::tools {

struct input_t {
  std::string name; // as diagnostics show it
  // Called once for each time that the input is read. Throws ReplayError with EXIT_IO when there is
  // nothing to be read.
  std::function<std::unique_ptr<std::istream>()> open;
  std::uintmax_t size = 0; // bytes; 0: not known
  bool is_standard_input = false;
};

// An input for each path, in order; "-" is standard input, as is an empty list. Looks at every path
// before any is opened: throws ReplayError "PATH: reason" with EXIT_IO for the first that is a
// directory or cannot be read.
[[nodiscard]] std::vector<input_t> inputsFrom(const std::vector<std::string>& paths);

// Throws ReplayError with EXIT_USAGE when the file `output`, which is going to be made anew, is one
// of the inputs.
void refuseToOverwrite(const std::vector<std::string>& inputs, const std::string& output);

} // namespace com::velanto::connectivity::tools

#endif
