// The sources of recorded messages: files and standard input. Each is opened when its turn comes,
// so there may be any number of them.
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
  // Called once for each reading of the input. Throws ReplayError with EXIT_IO when the input is
  // not readable.
  std::function<std::unique_ptr<std::istream>()> open;
  std::uintmax_t size = 0; // bytes; 0: not known
  bool is_standard_input = false;
};

// An input for each path, in order; "-" is standard input, as is an empty list. Looks at every path
// before it opens any: throws ReplayError "PATH: reason" with EXIT_IO for the first that is a
// directory or not readable.
[[nodiscard]] std::vector<input_t> inputsFrom(const std::vector<std::string>& paths);

// Throws ReplayError with EXIT_USAGE when the file `output`, which the run will overwrite, is one
// of the inputs.
void refuseToOverwrite(const std::vector<std::string>& inputs, const std::string& output);

} // namespace com::velanto::connectivity::tools

#endif
