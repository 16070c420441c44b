// The built program as people run it: its standard streams and its exit status.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "tests/tools/elapsed.hpp"
#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {

namespace {

struct result_t {
  int status; // -1 when a signal ended the program
  std::string out;
  std::string diagnostics; // without the time
  long memory;             // the most that was resident, in KiB
};

// The program with its surroundings.
class Program : public ::testing::Test {
 protected:
  result_t run(const std::vector<std::string>& arguments) {
    const std::string in_path = folder_.write("in", input_);
    const std::string diagnostics_path = folder_.path("diagnostics");
    posix_spawn_file_actions_t streams;
    posix_spawn_file_actions_init(&streams);
    open(streams, 0, in_path, O_RDONLY);
    if (out_descriptor_ >= 0) {
      posix_spawn_file_actions_adddup2(&streams, out_descriptor_, 1);
    } else {
      open(streams, 1, out_path_, O_WRONLY | O_CREAT | O_TRUNC);
    }
    open(streams, 2, diagnostics_path, O_WRONLY | O_CREAT | O_TRUNC);
    const int status = spawn(arguments, streams);
    posix_spawn_file_actions_destroy(&streams);
    return {status, folder_.read("out"), without_elapsed(folder_.read("diagnostics")), memory_};
  }

  const TemporaryFolder folder_;
  std::string input_;
  std::string out_path_ = folder_.path("out"); // where standard output goes,
  int out_descriptor_ = -1;                    // unless this is set: a descriptor of the test
  std::vector<std::string> environment_;       // added to the test's own

 private:
  static void open(posix_spawn_file_actions_t& streams, int descriptor, const std::string& path,
                   int flags) {
    ASSERT_EQ(posix_spawn_file_actions_addopen(&streams, descriptor, path.c_str(), flags, 0600), 0);
  }

  int spawn(std::vector<std::string> arguments, const posix_spawn_file_actions_t& streams) {
    arguments.insert(arguments.begin(), VLT_REPLAY_PATH);
    std::vector<std::string> variables = environment_;
    for (char** variable = environ; *variable != nullptr; ++variable)
      variables.emplace_back(*variable);
    pid_t child = 0;
    int status = 0;
    EXPECT_EQ(posix_spawn(&child, VLT_REPLAY_PATH, &streams, nullptr, pointers(arguments).data(),
                          pointers(variables).data()),
              0);
    rusage usage{};
    EXPECT_EQ(wait4(child, &status, 0, &usage), child);
    memory_ = usage.ru_maxrss;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  // As C wants them, a null at the end.
  static std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    result.reserve(texts.size() + 1);
    for (std::string& text : texts) result.push_back(text.data());
    result.push_back(nullptr);
    return result;
  }

  long memory_ = 0;
};

using OstroviaReplayTest = Program;

} // namespace

TEST_F(OstroviaReplayTest, StandardInputIsDecodedToStandardOutput) {
  input_ = R"({"metadata": {"pulsarPath": "t1/sub/events/7"}, "payload": {"id": "1", )"
           R"("source": {"id": "9"}, "text": "x", "time": "1970-01-01T00:00:05Z", "type": "T"}})"
           "\n";
  const result_t result = run({"--tenant-id", "t1", "-"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out.rfind(R"({"metadata":{)", 0), 0u);
  EXPECT_NE(result.out.find(R"("firstOccurrenceTime":5.0)"), std::string::npos);
  EXPECT_NE(result.out.find(R"("tenantId":"t1")"), std::string::npos);
  EXPECT_EQ(result.diagnostics,
            "read 1, reached the host 1, dropped 0, malformed 0, T ms, 0 blocks live\n");
}

TEST_F(OstroviaReplayTest, PluginsLogGoesToStandardError) {
  input_ = R"({"metadata": {"pulsarPath": "t1/sub/events/7"}, "payload": {"id": "1"}})";
  const result_t result = run({});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.diagnostics,
            "<connectivity.OstroviaNotifications2Codec.replay> Error when transforming message "
            "towards host ('id' = '1'): Required key 'source' missing from message payload\n"
            "read 1, reached the host 0, dropped 1, malformed 0, T ms, 0 blocks live\n");
}

TEST_F(OstroviaReplayTest, FilesAreReadInOrderAndMalformedLinesNamed) {
  const std::string first = folder_.write("first", "{\"payload\":1}\nx\n");
  input_ = "{\"payload\":2}\n{}x";
  const result_t result = run({first, "-"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "{\"metadata\":{},\"payload\":1}\n{\"metadata\":{},\"payload\":2}\n");
  EXPECT_EQ(result.diagnostics,
            first +
                ":2: not well-formed JSON\n<stdin>:2: not well-formed JSON\n"
                "read 2, reached the host 2, dropped 0, malformed 2, T ms, 0 blocks live\n");
}

TEST_F(OstroviaReplayTest, WrongUseIsStatus2) {
  const result_t missing = run({"/nowhere/in"});
  EXPECT_EQ(missing.status, 2);
  EXPECT_EQ(missing.out, "");
  EXPECT_EQ(missing.diagnostics, "ostrovia-replay: /nowhere/in: No such file or directory\n");
  const result_t unknown = run({"--unknown"});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_EQ(unknown.diagnostics,
            "ostrovia-replay: The following argument was not expected: --unknown\n");
}

TEST_F(OstroviaReplayTest, LeakIsStatus3) {
  input_ = "{\"payload\":1}\n{\"payload\":2}\n";
  environment_ = {"ASAN_OPTIONS=detect_leaks=0"}; // the leak is the subject
  const result_t result =
      run({"--plugin", VLT_FAULTY_PLUGIN_PATH, "--tenant-id", "leak", "--batch-size", "1"});
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.out, "{\"metadata\":{},\"payload\":1}\n{\"metadata\":{},\"payload\":2}\n");
  EXPECT_EQ(result.diagnostics,
            "read 2, reached the host 2, dropped 0, malformed 0, T ms, 2 blocks live\n");
}

TEST_F(OstroviaReplayTest, FullDeviceIsStatus2) {
  input_ = "{\"payload\":1}\n";
  out_path_ = "/dev/full";
  const result_t events = run({});
  EXPECT_EQ(events.status, 2);
  EXPECT_EQ(events.diagnostics,
            "ostrovia-replay: cannot write the events: No space left on device\n");
  const result_t help = run({"--help"});
  EXPECT_EQ(help.status, 2);
  EXPECT_EQ(help.diagnostics, "ostrovia-replay: cannot write to standard output\n");
}

// The file's other side is closed at once, as `| head -1` does after its line.
TEST_F(OstroviaReplayTest, ReaderThatGoesAwayIsStatus2) {
  const std::string pipe = folder_.path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  const int writer = ::open(pipe.c_str(), O_WRONLY);
  ASSERT_GE(writer, 0);
  close(reader);
  input_ = "{\"payload\":1}\n";
  out_descriptor_ = writer;
  const result_t result = run({});
  close(writer);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.diagnostics, "ostrovia-replay: cannot write the events: Broken pipe\n");
}

TEST_F(OstroviaReplayTest, MemoryDoesNotGrowWithTheInput) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "AddressSanitizer keeps freed memory back";
#endif
  // Written piece by piece: a program starts out with its parent's memory on its account.
  const std::string line = "{\"payload\":\"" + std::string(1000, 'x') + "\"}\n";
  std::ofstream file(folder_.path("in.ndjson"));
  for (int i = 0; i < 1000; ++i) file << line;
  file.flush();
  const result_t some = run({folder_.path("in.ndjson")});
  for (int i = 0; i < 50000; ++i) file << line;
  file.flush();
  out_path_ = "/dev/null";
  const result_t many = run({folder_.path("in.ndjson")});
  EXPECT_EQ(many.diagnostics,
            "read 51000, reached the host 51000, dropped 0, malformed 0, T ms, 0 blocks live\n");
  EXPECT_LT(many.memory, some.memory + 8192);
}

// A host library as a real one is: with the host's functions and no others.
TEST_F(OstroviaReplayTest, OtherHostLibrariesNeedNotCount) {
  input_ = "{\"payload\":[1]}\n";
  environment_ = {"LD_PRELOAD=" VLT_PLAIN_HOST_PATH, "ASAN_OPTIONS=verify_asan_link_order=0"};
  const result_t result = run({"--log-level", "6"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "{\"metadata\":{},\"payload\":[1]}\n");
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: this host library does not let its log level be set; --log-level is "
            "ignored\n"
            "read 1, reached the host 1, dropped 0, malformed 0, T ms, live blocks not counted by "
            "this host library\n");
}

} // namespace com::velanto::connectivity::test
