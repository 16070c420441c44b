// Everything that a page tells, once the run is over.
#ifndef VLT_TOOLS_REPORT_CONTENTS_HPP
#define VLT_TOOLS_REPORT_CONTENTS_HPP

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/host/file_identity.hpp"
#include "tools/report/changes.hpp"
#include "tools/report/collection.hpp"

namespace com::velanto::connectivity::tools::report {

// How the run came out.
struct outcome_t {
  std::uint64_t read;
  std::uint64_t out;                  // messages that came out
  std::optional<std::int64_t> blocks; // not given back; nothing: the host library does not count
  exit_status_t status;
  std::string recordings; // lines about recordings in the input; empty: there are none
};

// A library that took part.
struct build_t {
  std::string role;
  file_identity_t file;
  std::string version; // of the product, as the library tells
};

using named_values_t = std::vector<std::pair<std::string, std::string>>;

struct settings_t {
  std::vector<std::string> inputs;
  named_values_t options;       // of the command line, with their values
  named_values_t configuration; // that the plug-in got, as JSON
  std::vector<build_t> builds;
  bool timed = false; // shows measured times
};

struct contents_t {
  outcome_t outcome;
  settings_t settings;
  Collection collection;
  std::deque<Changes> changes; // one for each other run
};

} // namespace com::velanto::connectivity::tools::report

#endif
