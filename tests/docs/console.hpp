// Runs the commands of a document and compares their output with the lines below them. A command
// comes after "$ ", in a block ```console or in an indented one. The lines up to the next command
// are its output, on both streams. Not compared:
//
//   T ms, T µs, T messages/s    times differ from run to run
//   text…                       only the beginning of the line
//   … 4 more events …           as many lines as the numbers in it add up to
//
// All commands of a document run in one folder, where each finds the files of the earlier ones.
#ifndef VLT_TESTS_DOCS_CONSOLE_HPP
#define VLT_TESTS_DOCS_CONSOLE_HPP

#include <string>
#include <vector>

#include "tests/docs/markdown.hpp"
#include "tests/tools/program.hpp"

namespace com::velanto::connectivity::test {

struct session_t {
  std::string place;
  std::string command;
  std::string shown;
};

// Throws when a block ```console does not begin with a command.
[[nodiscard]] std::vector<session_t> sessionsOf(const document_t& document);

// `shown` with the lines and parts of lines replaced that `expected` leaves out.
[[nodiscard]] std::string abbreviated(const std::string& shown, const std::string& expected);

[[nodiscard]] std::string withoutTimes(const std::string& text);

// A folder for the commands; $PLUGIN names the codec, $RECORDER the recorder, PATH finds the tools.
class Console : public Program {
 protected:
  Console() { environment_ = {"PLUGIN=" VLT_PLUGIN_PATH, "RECORDER=" VLT_RECORDER_PATH}; }

  // Copies the samples into the folder of that name, "" for the test's own.
  void copySamples(const std::string& folder);

  void expectAsShown(const session_t& session);
  void expectAsShown(const char* document);
};

} // namespace com::velanto::connectivity::test

#endif
