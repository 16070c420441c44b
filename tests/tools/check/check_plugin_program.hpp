// Runs the built ostrovia-check-plugin as people do, from a shell.
#ifndef VLT_TESTS_TOOLS_CHECK_CHECK_PLUGIN_PROGRAM_HPP
#define VLT_TESTS_TOOLS_CHECK_CHECK_PLUGIN_PROGRAM_HPP

#include <map>
#include <string>

#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {

struct run_t {
  int status; // -1 when a signal ended the shell
  std::string out;
  std::string diagnostics;
};

// A folder with the plug-in in it, under its own name and as next.so. The latter is the next build
// of the examples. The program is in the search path.
class CheckPluginProgram {
 public:
  CheckPluginProgram();

  // `command` goes to a shell.
  [[nodiscard]] run_t shell(const std::string& command) const;
  // Puts the program's name in front of `arguments`.
  [[nodiscard]] run_t run(const std::string& arguments) const;
  [[nodiscard]] std::string file(const std::string& name) const { return folder_.read(name); }

 private:
  TemporaryFolder folder_;
};

// Time limit of a check for tests of its outcome: on a busy machine the default is short.
inline const std::string UNHURRIED = "--timeout 300 ";

// The plug-in of this build, and the one with a fault of this name.
[[nodiscard]] std::string goodPlugin();
[[nodiscard]] std::string faultyPlugin(const std::string& fault);

// Outcomes by name of check, out of a JSON document. Fails by exception when it is none.
[[nodiscard]] std::map<std::string, std::string> outcomesOf(const std::string& json);

// Whether this build has AddressSanitizer, which replaces the C library's heap.
[[nodiscard]] bool heapIsReplaced() noexcept;

} // namespace com::velanto::connectivity::test

#endif
