#include "identity/build_name.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

const std::string UNKNOWN = "ostrovia-notifications 1.2, unknown commit\n";

// A project with a program that shows its name, in the folder p.
class BuildNameTest : public ::testing::Test {
 protected:
  BuildNameTest() {
    std::filesystem::create_directories(folder_.path("p/value"));
    std::filesystem::copy(VLT_PROJECT_ROOT "/identity", folder_.path("p/identity"));
    folder_.write("p/.gitignore", "/build/\n");
    folder_.write("p/value/value.cpp", "// one\n");
    folder_.write("p/CMakeLists.txt",
                  "cmake_minimum_required(VERSION 3.25)\n"
                  "project(p VERSION 1.2 LANGUAGES CXX)\n"
                  "set(VLT_PACKAGE_NAME ostrovia-notifications)\n"
                  "add_subdirectory(identity)\n"
                  "add_executable(show main.cpp)\n"
                  "target_link_libraries(show PRIVATE identity)\n");
    folder_.write("p/main.cpp",
                  "#include <cstdio>\n"
                  "#include \"identity/build_name.hpp\"\n"
                  "int main() { std::puts(com::velanto::connectivity::VLT_BUILD_NAME); }\n");
  }

  // The output of a line for the shell, in the folder p.
  [[nodiscard]] std::string shell(const std::string& command) const {
    const std::string line = "cd '" + folder_.path("p") +
                             "' && export GIT_CONFIG_GLOBAL=/dev/null GIT_CEILING_DIRECTORIES='" +
                             std::filesystem::temp_directory_path().string() + "' && { " + command +
                             "; } > '" + folder_.path("out") + "' 2>&1";
    const int status = std::system(line.c_str()); // NOLINT(cert-env33-c): git and cmake
    EXPECT_EQ(status, 0) << command << '\n' << folder_.read("out");
    return folder_.read("out");
  }
  void commit(const std::string& options = "") const {
    static_cast<void>(
        shell("git add --all && git -c user.name=n -c user.email=e commit --quiet --message m " +
              options));
  }
  [[nodiscard]] std::string build() const {
    static_cast<void>(shell("test -d build || '" VLT_CMAKE "' -G Ninja -S . -B build "
                            "-D CMAKE_CXX_COMPILER='" VLT_CXX_COMPILER "'"));
    return shell("ninja -C build");
  }
  [[nodiscard]] std::string name() const { return shell("build/show"); }
  [[nodiscard]] std::string nameOfHead(const std::string& rest) const {
    std::string hash = shell("git rev-parse HEAD").substr(0, 12);
    return "ostrovia-notifications 1.2, commit " + hash + rest + "\n";
  }

  const TemporaryFolder folder_;
};

} // namespace

TEST_F(BuildNameTest, NewCommitCompilesOneSource) {
  static_cast<void>(shell("git init --quiet"));
  commit();
  static_cast<void>(build());
  const std::string first = name();
  EXPECT_EQ(first, nameOfHead(""));
  EXPECT_THAT(build(), HasSubstr("no work to do"));
  commit("--allow-empty");
  const std::string log = build();
  EXPECT_THAT(log, HasSubstr("build_name.cpp"));
  EXPECT_THAT(log, Not(HasSubstr("main.cpp")));
  EXPECT_EQ(name(), nameOfHead(""));
  EXPECT_NE(name(), first);
}

TEST_F(BuildNameTest, ChangedSourcesAreNoted) {
  static_cast<void>(shell("git init --quiet"));
  commit();
  folder_.write("p/value/value.cpp", "// two\n");
  static_cast<void>(build());
  EXPECT_EQ(name(), nameOfHead(", modified"));
  EXPECT_THAT(build(), HasSubstr("no work to do"));
  static_cast<void>(shell("git checkout --quiet value"));
  folder_.write("p/notes.md", "no part of a build\n");
  static_cast<void>(build());
  EXPECT_EQ(name(), nameOfHead(""));
}

TEST_F(BuildNameTest, SourcesWithoutGitHaveAnUnknownCommit) {
  static_cast<void>(build());
  EXPECT_EQ(name(), UNKNOWN);
}

TEST_F(BuildNameTest, CommitOfSurroundingSourcesIsNotTaken) {
  static_cast<void>(shell("cd .. && git init --quiet"));
  commit();
  static_cast<void>(build());
  EXPECT_EQ(name(), UNKNOWN);
}

} // namespace com::velanto::connectivity::test
