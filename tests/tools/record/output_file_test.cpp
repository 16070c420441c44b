// Files that the built tool writes: none in the place of another, none by halves.
#include "tools/record/output_file.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "tests/support/values.hpp"
#include "tests/tools/program.hpp"
#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::test {

namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;
using tools::OutputFile;
namespace fs = std::filesystem;

class OutputFileTest : public Program {
 protected:
  // Whatever is below the folder, hidden files included.
  std::vector<std::string> names(const std::string& folder) const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_.path(folder))) {
      names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  // Runs the tool on a pipe, and sends it the signal when it has read a message and waits.
  result_t end(int signal, const std::vector<std::string>& arguments) {
    int in[2] = {};
    EXPECT_EQ(pipe2(in, O_CLOEXEC), 0);
    in_descriptor_ = in[0];
    const pid_t child = start(VLT_REPLAY_PATH, arguments);
    const std::string line = textlessLine("1");
    EXPECT_EQ(write(in[1], line.data(), line.size()), static_cast<ssize_t>(line.size()));
    awaitIdle(child, in[0]);
    kill(child, signal);
    result_t result = waitFor(child);
    for (const int descriptor : in) close(descriptor);
    in_descriptor_ = -1;
    return result;
  }

  const std::string lines_ = eventLine("1") + textlessLine("2");
};

} // namespace

TEST_F(OutputFileTest, FileAppearsWithItsCommit) {
  fs::create_directory(folder_.path("f"));
  {
    OutputFile file(folder_.path("f/new"));
    file.write("a\n");
    file.flush();
    EXPECT_THAT(names("f"), ElementsAre(".new.1"));
    OutputFile second(folder_.path("f/new"));
    second.write("b\n");
    second.commit();
    EXPECT_EQ(folder_.read("f/new"), "b\n");
  }
  EXPECT_THAT(names("f"), ElementsAre("new"));
}

TEST_F(OutputFileTest, ReplacedFileKeepsLinkAndRights) {
  fs::create_directory(folder_.path("f"));
  const std::string old = folder_.write("f/old", "old");
  ASSERT_EQ(chmod(old.c_str(), 0640), 0);
  fs::create_symlink("old", folder_.path("f/link"));
  OutputFile file(folder_.path("f/link"));
  file.write("new");
  file.commit();
  EXPECT_TRUE(fs::is_symlink(folder_.path("f/link")));
  EXPECT_EQ(folder_.read("f/old"), "new");
  struct stat status {};
  ASSERT_EQ(stat(old.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST_F(OutputFileTest, UnwritablePathsAreNamed) {
  EXPECT_EQ(errorOf([] { OutputFile("/nowhere/x"); }), "/nowhere/x: No such file or directory");
  const std::string folder = folder_.path("");
  EXPECT_EQ(errorOf([&] { OutputFile file(folder); }), folder + ": Is a directory");
  EXPECT_EQ(errorOf([] { OutputFile("/dev/fd/99"); }), "/dev/fd/99: Bad file descriptor");
}

TEST_F(OutputFileTest, StreamsAndDevicesAreWrittenThrough) {
  folder_.write("in.ndjson", textlessLine("1"));
  runShell("ostrovia-replay --quiet --dropped lost in.ndjson");
  const std::string lost = folder_.read("lost");
  for (const char* const command :
       {"ostrovia-replay --quiet --dropped - in.ndjson",
        "ostrovia-replay --quiet --dropped /dev/stdout in.ndjson",
        "ostrovia-replay --quiet --dropped /dev/fd/3 in.ndjson 3>&1 > /dev/null",
        "echo x; ostrovia-replay --quiet --dropped - in.ndjson",
        "mkfifo pipe; cat pipe & ostrovia-replay --quiet --dropped pipe in.ndjson; wait"}) {
    const std::string out = runShell(command).out;
    EXPECT_TRUE(out == lost || out == "x\n" + lost) << command << ": " << out;
  }
  EXPECT_EQ(runShell("ostrovia-replay --dropped /dev/null in.ndjson").status, 0);
}

TEST_F(OutputFileTest, OutputThatIsUsedOtherwiseIsRefused) {
  struct row_t {
    std::string command;   // before it, files as in a fresh folder
    std::string complaint; // empty: there is no stream left for it
  };
  const auto read = [](const std::string& path) {
    return path + " is read and cannot be written, too";
  };
  for (const row_t& row : {
           row_t{"--dropped in.ndjson < in.ndjson", read("in.ndjson")},
           {"--record in.ndjson - < in.ndjson", read("in.ndjson")},
           {"--dropped soft in.ndjson", read("soft")},
           {"--dropped hard in.ndjson", read("hard")},
           {"--dropped in.ndjson soft", read("in.ndjson")},
           {"--record x --dropped x in.ndjson", "x is written twice"},
           {"--record new --dropped ./new in.ndjson", "new is written twice"},
           {"--record dangling --dropped nowhere in.ndjson", "dangling is written twice"},
           {"--plugin ./p.so --record p.so in.ndjson", read("p.so")},
           {"--against ./p.so --record p.so in.ndjson", read("p.so")},
           {"--config c.yaml --record c.yaml in.ndjson", read("c.yaml")},
           {"--expect x --record x in.ndjson", read("x")},
           {"--redact id --redacted in.ndjson in.ndjson", read("in.ndjson")},
           {"--redact id --redact-key x --redacted x in.ndjson", read("x")},
           {"in.ndjson >> in.ndjson", "standard output leads to in.ndjson, which is read"},
           {"in.ndjson 2>> in.ndjson", "standard error leads to in.ndjson, which is read"},
           {"in.ndjson >> in.ndjson 2>&1", ""},
           {"--config c.yaml in.ndjson >> c.yaml",
            "standard output leads to c.yaml, which is read"},
           {"--record x in.ndjson >> x", "x is written twice"},
           {"--suite s --update --plugin s/a.golden", read("s/a.golden")},
           {"--suite s --junit s/a.ndjson", read("s/a.ndjson")},
           {"--suite s --junit s/a.golden", read("s/a.golden")},
           {"--suite looped --update", read("looped/a.golden")},
       }) {
    const TemporaryFolder fresh;
    const std::string in = fresh.write("in.ndjson", lines_);
    fs::create_symlink("in.ndjson", fresh.path("soft"));
    fs::create_symlink("nowhere", fresh.path("dangling"));
    fs::create_hard_link(in, fresh.path("hard"));
    fs::copy(VLT_PLUGIN_PATH, fresh.path("p.so"));
    fresh.write("c.yaml", "tenantId: t1\n");
    fresh.write("x", "some twenty bytes long");
    for (const char* const suite : {"s", "looped"}) {
      fs::create_directory(fresh.path(suite));
      fs::copy(in, fresh.path(suite) + "/a.ndjson");
    }
    fresh.write("s/a.golden", "golden");
    fs::create_symlink("a.ndjson", fresh.path("looped/a.golden"));
    const auto content = [&] {
      return fresh.read("in.ndjson") + fresh.read("p.so") + fresh.read("c.yaml") + fresh.read("x") +
             fresh.read("s/a.ndjson") + fresh.read("s/a.golden") + fresh.read("looped/a.ndjson");
    };
    const std::string before = content();
    const result_t result = runShell(
        "cd '" + fresh.path("") + "' && ulimit -f 2000 && ostrovia-replay --quiet " + row.command);
    EXPECT_EQ(result.status, tools::EXIT_USAGE) << row.command;
    // A complaint about standard error itself goes to the other stream.
    const std::string complaint =
        row.complaint.empty() ? "" : "ostrovia-replay: " + row.complaint + "\n";
    EXPECT_EQ(result.diagnostics + result.out, complaint) << row.command;
    EXPECT_TRUE(content() == before) << row.command;
  }
}

TEST_F(OutputFileTest, OtherOutputsMayLeadToOnePlace) {
  folder_.write("in.ndjson", lines_);
  EXPECT_EQ(runShell("ostrovia-replay in.ndjson > all 2>&1").status, 0);
  EXPECT_EQ(runShell("ostrovia-replay --dropped - in.ndjson > all 2>&1").status, 0);
  EXPECT_EQ(runShell("ostrovia-replay --dropped /dev/null --record /dev/null in.ndjson").status, 0);
  EXPECT_EQ(runShell("ostrovia-replay in.ndjson in.ndjson").status, 0);
}

TEST_F(OutputFileTest, ClosedStreamsGetNoneOfTheFiles) {
  folder_.write("in.ndjson", lines_);
  runShell("ostrovia-replay --quiet --record x in.ndjson");
  const std::string golden = folder_.read("x");
  for (const char* const streams : {"2>&-", "<&- 2>&-"}) {
    EXPECT_EQ(runShell(std::string("ostrovia-replay --record y in.ndjson ") + streams).status, 0);
    EXPECT_EQ(folder_.read("y"), golden) << streams;
  }
  for (const char* const streams : {">&-", ">&- 2>&-", "<&- >&- 2>&-"}) {
    EXPECT_EQ(runShell(std::string("ostrovia-replay --record x in.ndjson ") + streams).status,
              tools::EXIT_IO);
    EXPECT_EQ(folder_.read("x"), golden) << streams;
    EXPECT_EQ(folder_.read("in.ndjson"), lines_) << streams;
  }
}

TEST_F(OutputFileTest, EndedRunLeavesTheOldFiles) {
  const std::string text = folder_.write("x", "old\n");
  for (const int signal : {SIGINT, SIGTERM, SIGKILL}) {
    const result_t result = end(signal, {"--record", "x", "--dropped", "y"});
    EXPECT_EQ(result.status, signal == SIGKILL ? -1 : tools::EXIT_INTERRUPTED);
    EXPECT_EQ(folder_.read("x"), "old\n");
    EXPECT_FALSE(fs::exists(folder_.path("y")));
    EXPECT_EQ(fs::exists(folder_.path(".x.1")), signal == SIGKILL);
  }
}

TEST_F(OutputFileTest, FullDiskLeavesTheOldFile) {
  folder_.write("x", "old\n");
  std::string text;
  for (int i = 0; i < 1000; ++i) text += lines_;
  folder_.write("in.ndjson", text);
  // A limit on the size of files stands in for the disk.
  const result_t result = runShell(
      "trap '' XFSZ; ulimit -f 100; ostrovia-replay --quiet --record x in.ndjson > /dev/null");
  EXPECT_EQ(result.status, tools::EXIT_IO);
  EXPECT_THAT(result.diagnostics, StartsWith("ostrovia-replay: cannot write x: File too large\n"));
  EXPECT_EQ(folder_.read("x"), "old\n");
  EXPECT_FALSE(fs::exists(folder_.path(".x.1")));
}

TEST_F(OutputFileTest, InterruptedSuiteLeavesItsGoldenFiles) {
  fs::create_directory(folder_.path("s"));
  const std::string pipe = folder_.path("s/b.ndjson");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const char* const name : {"a", "c"}) {
    folder_.write(std::string("s/") + name + ".ndjson", lines_);
    folder_.write(std::string("s/") + name + ".golden", "old\n");
  }
  folder_.write("s/b.golden", "old\n");
  const pid_t child = start(VLT_REPLAY_PATH, {"--suite", "s", "--update", "--junit", "report.xml"});
  {
    std::ofstream writer(pipe); // waits for the tool
    writer << lines_ << std::flush;
    kill(child, SIGINT); // before the end of the pipe
  }
  const result_t result = waitFor(child);
  EXPECT_EQ(result.status, tools::EXIT_INTERRUPTED);
  EXPECT_NE(folder_.read("s/a.golden"), "old\n");
  EXPECT_EQ(folder_.read("s/b.golden"), "old\n");
  EXPECT_EQ(folder_.read("s/c.golden"), "old\n");
  EXPECT_FALSE(fs::exists(folder_.path("report.xml")));
}

} // namespace com::velanto::connectivity::test
