// The sources of recorded messages: files, recordings of several files, and standard input. Each
// is opened when its turn comes, so there may be any number of them.
#ifndef VLT_TOOLS_REPLAY_INPUT_INPUTS_HPP
#define VLT_TOOLS_REPLAY_INPUT_INPUTS_HPP

#include <cstdint>
#include <functional>
#include <istream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/replay/input/recording_files.hpp"

namespace com::velanto::connectivity::tools {

struct input_t {
  std::string name; // as diagnostics show it
  // Called once for each reading of the input; null: the file of a recording has been deleted.
  // Throws ReplayError with EXIT_IO when the input is not readable.
  std::function<std::unique_ptr<std::istream>()> open;
  std::uintmax_t size = 0; // bytes; 0: not known
  bool is_standard_input = false;
  recording_file_t file{}; // number 0: not the file of a recording
  // After a reading up to byte `end`: the next input when somebody keeps writing, that is the next
  // file of the recording, or the file that has taken the place of this one. Nothing: none yet.
  std::function<std::optional<input_t>(std::uintmax_t end)> successor{};
};

// The inputs for each path, in order: a file, a recording as recordingAt() finds it, or "-" for
// standard input, as is an empty list. Looks at every path before it opens any: throws ReplayError
// "PATH: reason" with EXIT_IO for the first that is not readable, and with EXIT_USAGE for a folder
// without one recording.
[[nodiscard]] std::vector<input_t> inputsFrom(const std::vector<std::string>& paths);

} // namespace com::velanto::connectivity::tools

#endif
