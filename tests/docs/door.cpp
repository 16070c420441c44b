#include "tests/docs/door.hpp"

#include <chrono>
#include <filesystem>

namespace com::velanto::connectivity::test {

namespace {

namespace fs = std::filesystem;

constexpr const char* NOTE_CALL = "#!/bin/sh\necho \"${0##*/}${*:+ $*}\" >> \"$CALLS\"\n";

} // namespace

Door::Door() {
  copySamples("samples");
  for (const char* const part : {"dev", "scripts", "CMakePresets.json"}) {
    fs::copy(fs::path(VLT_PROJECT_ROOT) / part, folder_.path(part), fs::copy_options::recursive);
  }
  // Older than the files made from it.
  fs::last_write_time(folder_.path("CMakePresets.json"),
                      fs::file_time_type::clock::now() - std::chrono::hours(1));
  for (const char* const preset : {"release", "quick", "sanitize", "thread", "coverage", "bench"}) {
    const std::string build = std::string("build/") + preset;
    fs::create_directories(folder_.path(build));
    fs::create_directory_symlink(fs::path(VLT_REPLAY_PATH).parent_path(),
                                 folder_.path(build + "/bin"));
    folder_.write(build + "/build.ninja", "");
  }
  fs::create_directory(folder_.path("fakes"));
  for (const char* const program :
       {"apt-get", "cmake", "clang-format-14", "ctest", "gcovr", "shellcheck", "sudo"}) {
    replace(program, NOTE_CALL);
  }
  replace("dpkg-query", "#!/bin/sh\nfor name; do echo \"installed $name\"; done\n");
  replace("ninja", "#!/bin/sh\necho 'ninja: no work to do.'\n");
}

void Door::replace(const std::string& program, const std::string& script) {
  const std::string path = folder_.write("fakes/" + program, script);
  fs::permissions(path, fs::perms::owner_all);
}

std::string Door::runAtDoor(const std::string& command) {
  const result_t result =
      runShell("PATH=$PWD/fakes:$PATH CALLS=$PWD/calls; export PATH CALLS; ( " + command +
               "\n) 2> reported; echo \"status $?\" >> calls; cat reported");
  EXPECT_EQ(result.diagnostics, "") << command;
  return result.out;
}

std::string Door::takeCalls() {
  std::string calls = folder_.read("calls");
  folder_.write("calls", "");
  return calls;
}

} // namespace com::velanto::connectivity::test
