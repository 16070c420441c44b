// Runs the conformance files. Each line is a test of its own, named FILE.NAME. A malformed line ends
// the program before any test runs.
#include <gtest/gtest.h>
#include <unistd.h>

#include <iostream>
#include <set>
#include <string>

#include "tools/check/conformance/player.hpp"
#include "tools/check/selection.hpp"
#include "tools/check/shared_file.hpp"

namespace com::velanto::connectivity::test {
namespace {

using namespace tools::check;
using tools::PluginLibrary;

// Redirects standard error to a file while it lives.
class Redirected {
 public:
  explicit Redirected(int file) : before_(dup(STDERR_FILENO)) { dup2(file, STDERR_FILENO); }
  Redirected(const Redirected&) = delete;
  Redirected& operator=(const Redirected&) = delete;
  ~Redirected() {
    dup2(before_, STDERR_FILENO);
    close(before_);
  }

 private:
  int before_;
};

class Case : public ::testing::Test {
 public:
  Case(const PluginLibrary& library, const line_t& line) : library_(library), line_(line) {}

 private:
  void TestBody() override {
    const SharedFile records;
    const SharedFile printed;
    Trial trial({VLT_PLUGIN_PATH}, 0, records.descriptor(), printed.descriptor());
    {
      const Redirected redirected(printed.descriptor());
      play(trial, library_, line_, Demand::ADVISED);
    }
    EXPECT_EQ(trial.mismatches(), 0) << readWhole(records.descriptor());
  }

  const PluginLibrary& library_;
  const line_t& line_;
};

std::vector<line_t> allLines() {
  std::set<std::string_view> files;
  std::vector<line_t> lines;
  for (const embedded_t& embedded : embeddedLines()) {
    if (!files.insert(embedded.file).second) continue;
    for (line_t& line : readLines(embedded.file)) lines.push_back(std::move(line));
  }
  return lines;
}

// `library` and `lines` outlive the tests.
void registerTests(const PluginLibrary& library, const std::vector<line_t>& lines) {
  for (const line_t& line : lines) {
    const std::string file = line.file + ".ndjson";
    ::testing::RegisterTest(line.file.c_str(), line.name.c_str(), nullptr, nullptr, file.c_str(),
                            line.number, [&library, &line] { return new Case(library, line); });
  }
}

TEST(HarnessFiles, HoldAtLeast1800Cases) {
  EXPECT_GE(embeddedLines().size(), 1800U) << "cases have been lost";
}

TEST(HarnessFiles, AreAllChecked) {
  std::set<std::string> checks;
  for (const check_t& check : allChecks()) checks.insert(check.name);
  for (const embedded_t& embedded : embeddedLines()) {
    std::string name = "conformance." + std::string(embedded.file);
    std::replace(name.begin(), name.end(), '_', '-');
    ASSERT_TRUE(checks.contains(name)) << name;
  }
}

// A filter that matches no test must fail, for instance after a file was renamed.
int runSelected() {
  const int result = RUN_ALL_TESTS();
  if (::testing::UnitTest::GetInstance()->test_to_run_count() > 0) return result;
  std::cerr << "no test matches the filter\n";
  return 1;
}

} // namespace
} // namespace com::velanto::connectivity::test

int main(int argc, char** argv) {
  using namespace com::velanto::connectivity::test;
  ::testing::InitGoogleTest(&argc, argv);
  try {
    const PluginLibrary library(VLT_PLUGIN_PATH, PluginLibrary::Version::ANY);
    const std::vector<line_t> lines = allLines();
    registerTests(library, lines);
    return runSelected();
  } catch (const std::exception& e) {
    std::cerr << e.what() << '\n';
    return 1;
  }
}
