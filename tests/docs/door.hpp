// A copy of the project's door, ./dev with its scripts, in the folder of a test. Around it are the
// samples and the tools of this build, as if built there. Its programs to install, build, test and
// lint only write down their calls.
#ifndef VLT_TESTS_DOCS_DOOR_HPP
#define VLT_TESTS_DOCS_DOOR_HPP

#include <string>

#include "tests/docs/console.hpp"

namespace com::velanto::connectivity::test {

class Door : public Console {
 protected:
  Door();

  // Runs a line of shell in front of the door. Returns its results and then its diagnostics, in the
  // order of a terminal.
  std::string runAtDoor(const std::string& command);

  // The calls of the replaced programs since the last time, a line each, without their folder.
  std::string takeCalls();

 private:
  void replace(const std::string& program, const std::string& script);
};

} // namespace com::velanto::connectivity::test

#endif
