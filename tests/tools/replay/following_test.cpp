// --follow: the built tool reads files while somebody writes them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "tests/tools/program.hpp"
#include "tests/tools/recorded_lines.hpp"

namespace com::velanto::connectivity::test {

namespace {

namespace fs = std::filesystem;

std::string eventOf(unsigned payload) {
  return "{\"metadata\":{},\"payload\":" + std::to_string(payload) + "}\n";
}

class FollowingTest : public Program {
 protected:
  void append(const std::string& name, const std::string& text) const {
    std::ofstream(folder_.path(name), std::ios::binary | std::ios::app) << text;
  }

  void follow(const std::string& path) { child_ = start(VLT_REPLAY_PATH, {"--follow", path}); }

  // Waits until the tool has written `out`.
  void awaitOutput(const std::string& out) const {
    for (int i = 0; i < 1000 && folder_.read("out") != out; ++i) usleep(10000);
    EXPECT_EQ(folder_.read("out"), out);
  }

  // Ends it as Ctrl-C does and returns its diagnostics.
  std::string interrupt() {
    kill(child_, SIGINT);
    const result_t result = waitFor(child_);
    EXPECT_EQ(result.status, 130);
    return result.diagnostics;
  }

  pid_t child_ = 0;
};

} // namespace

TEST_F(FollowingTest, LinesAreReadAsTheyGrow) {
  append("log", eventOf(1) + "{\"payl");
  follow("log");
  awaitOutput(eventOf(1));
  append("log", "oad\":2}");
  append("log", "\n" + eventOf(3));
  awaitOutput(eventOf(1) + eventOf(2) + eventOf(3));
  EXPECT_EQ(interrupt(), "read 3, reached the host 3, dropped 0, malformed 0, T ms\n");
}

TEST_F(FollowingTest, ReplacedFileIsReadFromItsBegin) {
  append("log", eventOf(1) + eventOf(2));
  follow("log");
  awaitOutput(eventOf(1) + eventOf(2));
  fs::rename(folder_.path("log"), folder_.path("log.1"));
  append("log.1", eventOf(3)); // the writer has not yet noticed
  append("log", eventOf(4) + eventOf(5));
  awaitOutput(eventOf(1) + eventOf(2) + eventOf(3) + eventOf(4) + eventOf(5));
  fs::resize_file(folder_.path("log"), 0);
  append("log", eventOf(6));
  awaitOutput(eventOf(1) + eventOf(2) + eventOf(3) + eventOf(4) + eventOf(5) + eventOf(6));
  interrupt();
}

TEST_F(FollowingTest, RecordingGoesOnInItsNextFile) {
  fs::create_directory(folder_.path("rec"));
  append("rec/a.000001.ndjson", headLine({"a", 1}) + recordedLine({1, 1}, eventOf(1)));
  follow("rec");
  awaitOutput(eventOf(1));
  append("rec/a.000001.ndjson", recordedLine({2, 2}, eventOf(2)) + footLine(2, 2, 0, 0, true));
  append("rec/a.000002.ndjson",
         headLine({"a", 2}) + recordedLine({3, 3}, eventOf(3)) + "{\"recorded\":{\"tim");
  awaitOutput(eventOf(1) + eventOf(2) + eventOf(3));
  EXPECT_EQ(interrupt(),
            "a: 3 messages, files 1-2, run 00000000000000a1\n  recorder a in chain site\n"
            "  seen 2, recorded 2, filtered 0, lost 0; no end\n"
            "read 3, reached the host 3, dropped 0, malformed 0, T ms\n");
}

TEST_F(FollowingTest, FilesThatTheRingDeletedAreNamed) {
  fs::create_directory(folder_.path("rec"));
  append("rec/a.000001.ndjson", headLine({"a", 1}) + recordedLine({1, 1}, eventOf(1)));
  follow("rec");
  awaitOutput(eventOf(1));
  fs::remove(folder_.path("rec/a.000001.ndjson"));
  append("rec/a.000004.ndjson", headLine({"a", 4}) + recordedLine({9, 9}, eventOf(9)));
  awaitOutput(eventOf(1) + eventOf(9));
  EXPECT_EQ(interrupt(),
            "a: 2 messages, files 1, 4, run 00000000000000a1\n  recorder a in chain site\n"
            "  no counts yet; no end\n"
            "a: files 2-3 deleted before the tool read them\n"
            "read 2, reached the host 2, dropped 0, malformed 0, T ms\n");
}

TEST_F(FollowingTest, BatchesAreNotHeldBackUntilTheyAreFull) {
  append("log", eventOf(1) + eventOf(2) + eventOf(3));
  child_ = start(VLT_REPLAY_PATH, {"--follow", "log", "--batch-size", "2"});
  awaitOutput(eventOf(1) + eventOf(2) + eventOf(3));
  interrupt();
}

} // namespace com::velanto::connectivity::test
