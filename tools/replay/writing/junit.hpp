// The report of a suite in the XML that JUnit writes and build servers read.
#ifndef VLT_TOOLS_REPLAY_WRITING_JUNIT_HPP
#define VLT_TOOLS_REPLAY_WRITING_JUNIT_HPP

#include <string>
#include <vector>

#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::tools {

struct case_result_t {
  std::string name;
  exit_status_t status = EXIT_FINE; // EXIT_DIFFERENT: a failure; anything else that is not fine:
                                    // an error, the case could not run
  std::string complaint;            // lines for people
  double seconds = 0;
};

// Makes or replaces the file. Throws ReplayError with EXIT_IO.
void writeJunit(const std::string& path, const std::string& suite, const std::string& plugin_build,
                const std::vector<case_result_t>& results);

} // namespace com::velanto::connectivity::tools

#endif
