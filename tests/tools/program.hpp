// The built ostrovia-replay as people run it: arguments, standard streams, exit status.
#ifndef VLT_TESTS_TOOLS_PROGRAM_HPP
#define VLT_TESTS_TOOLS_PROGRAM_HPP

#include <gtest/gtest.h>
#include <spawn.h>

#include <string>
#include <vector>

#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {

struct result_t {
  int status; // -1 when a signal ended the program
  std::string out;
  std::string diagnostics; // without the time
  long memory;             // the most that was resident, in KiB
};

class Program : public ::testing::Test {
 protected:
  // Runs the tool in the folder of the test.
  result_t run(const std::vector<std::string>& arguments);
  // The same for a line as typed into a shell, in which ostrovia-replay is the tool.
  result_t runShell(const std::string& command);

  // Starts it without waiting for its end.
  pid_t start(const std::string& program, std::vector<std::string> arguments);
  result_t waitFor(pid_t child);
  // Waits until the tool has emptied the pipe, its standard input, and waits for more.
  static void awaitIdle(pid_t child, int pipe);
  // Starts the tool with `descriptor`, one of the numbers below, on a terminal. Returns the
  // descriptor to read the output from, for the caller to close.
  int startOnTerminal(int& descriptor, const std::vector<std::string>& arguments, pid_t& child);
  // The same until its end with status 0; returns the output on the terminal.
  std::string shownOnTerminal(int& descriptor, const std::vector<std::string>& arguments);

  const TemporaryFolder folder_;
  std::string input_;                          // the content of standard input,
  int in_descriptor_ = -1;                     // unless this is set: a descriptor of the test
  std::string out_path_ = folder_.path("out"); // where standard output goes,
  int out_descriptor_ = -1;                    // unless this is set
  int error_descriptor_ = -1;                  // standard error, unless a test collects it
  std::vector<std::string> environment_;       // added to the test's own
};

// Lines as the tool reads them: an event that converts, the same without its "text", an alarm, and
// a message that passes.
std::string eventLine(const std::string& id);
std::string textlessLine(const std::string& id);
std::string alarmLine(const std::string& id, const std::string& severity = "MAJOR");
std::string passingLine(const std::string& payload);

// The plug-in's log line for textlessLine(id).
std::string textlessLog(const std::string& id);

} // namespace com::velanto::connectivity::test

#endif
