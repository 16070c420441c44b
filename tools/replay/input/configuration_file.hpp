// The codec's section of a chain configuration as a file of YAML: a mapping of keys to values.
// Values keep their kinds, since a codec distinguishes them.
//
//   YAML                            value
//   true, false                     boolean
//   12, 0x1F                        integer
//   1.5, 1e3                        double
//   ~, null, nothing                empty
//   "12", 'a', any other scalar     string
//   [ ], { }, blocks                list, map
#ifndef VLT_TOOLS_REPLAY_INPUT_CONFIGURATION_FILE_HPP
#define VLT_TOOLS_REPLAY_INPUT_CONFIGURATION_FILE_HPP

#include <string>
#include <vector>

#include "value/data_t.hpp"

namespace com::velanto::connectivity::tools {

struct configuration_entry_t {
  std::string key;
  std::string key_place; // "LINE:COLUMN", from 1
  std::string place;     // of the value
  data_t value;
};

// The entries in the order of the file. Throws ReplayError: with EXIT_IO for a failed read, with
// EXIT_PLUGIN "FILE:LINE:COLUMN: reason" for a file that is no such mapping in UTF-8, repeats a key
// or has a second document.
[[nodiscard]] std::vector<configuration_entry_t> readConfiguration(const std::string& path);

} // namespace com::velanto::connectivity::tools

#endif
