#include "tests/tools/options/command_output.hpp"

#include <sys/wait.h>

#include <sstream>

#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {

std::string outputOf(const std::string& command) {
  const TemporaryFolder folder;
  const std::string script = folder.write("script", command);
  const std::string line = "bash '" + script + "' > '" + folder.path("out") + "' 2>&1";
  const int status = std::system(line.c_str()); // NOLINT(cert-env33-c): a shell is the subject
  std::string output = folder.read("out");
  if (WEXITSTATUS(status) != 0) output += "status " + std::to_string(WEXITSTATUS(status)) + "\n";
  return output;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

} // namespace com::velanto::connectivity::test
