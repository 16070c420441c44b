// A copy of the project's door, ./dev with its scripts, in the folder of a test: around it lie the
// samples and the tools of this build, as if they had been built there. The programs that install,
// build, test and lint are replaced by ones that do nothing but write down how they were called.
#ifndef VLT_TESTS_DOCS_DOOR_HPP
#define VLT_TESTS_DOCS_DOOR_HPP

#include <string>

#include "tests/docs/console.hpp"

namespace com::velanto::connectivity::test {

class Door : public Console {
 protected:
  Door();

  // Runs a line of shell in front of the door: first what it prints, then its diagnostics, as on a
  // terminal, where results come before what is reported of them.
  std::string runAtDoor(const std::string& command);

  // How the replaced programs were called since the last time, a line each, without their folder.
  std::string takeCalls();

 private:
  void replace(const std::string& program, const std::string& script);
};

} // namespace com::velanto::connectivity::test

#endif
