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

// The lines of a terminal that knows as much as the tool makes use of.
class Screen {
 public:
  explicit Screen(int terminal) : terminal_(terminal) {}

  // Reads on until the last line that is not empty begins with `begin`.
  void await(const std::string& begin) {
    while (!lines_[lines_.size() - (lines_.back().empty() ? 2 : 1)].starts_with(begin)) {
      char piece[1000];
      const ssize_t size = read(terminal_, piece, sizeof piece);
      ASSERT_GT(size, 0) << "before " << begin;
      pending_.append(piece, static_cast<std::size_t>(size));
      take();
    }
  }
  const std::string& line(std::size_t number) const { return lines_.at(number); }
  std::size_t height() const { return lines_.size(); }

 private:
  // Shows whole controls and lines; each erased line is the last one.
  void take() {
    static const std::string ERASE = "\r\x1B[K";
    static const std::string UP = "\x1B[A";
    while (!pending_.empty()) {
      if (pending_.starts_with(ERASE)) {
        lines_.back().clear();
        pending_.erase(0, ERASE.size());
      } else if (pending_.starts_with(UP)) {
        lines_.pop_back();
        pending_.erase(0, UP.size());
      } else if (pending_.starts_with("\r\n")) {
        lines_.emplace_back();
        pending_.erase(0, 2);
      } else if (ERASE.starts_with(pending_) || UP.starts_with(pending_)) {
        return; // the rest is on its way
      } else {
        lines_.back() += pending_[0];
        pending_.erase(0, 1);
      }
    }
  }

  int terminal_;
  std::string pending_;
  std::vector<std::string> lines_{2}; // below an empty one
};

class FollowingTest : public Program {
 protected:
  void append(const std::string& name, const std::string& text) const {
    std::ofstream(folder_.path(name), std::ios::binary | std::ios::app) << text;
  }

  void follow(const std::string& path) { child_ = start(VLT_REPLAY_PATH, {"--follow", path}); }

  // Waits until the tool has written `text`.
  void awaitFile(const std::string& name, const std::string& text) const {
    for (int i = 0; i < 1000 && folder_.read(name) != text; ++i) usleep(10000);
    EXPECT_EQ(folder_.read(name), text);
  }
  void awaitOutput(const std::string& out) const { awaitFile("out", out); }

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

TEST_F(FollowingTest, RecordingMayBeginLater) {
  for (const std::string path : {"rec", "rec/a"}) {
    fs::create_directory(folder_.path("rec"));
    follow(path);
    awaitFile("diagnostics", "ostrovia-replay: waits for input at " + path + "\n");
    append("rec/a.000001.ndjson", headLine({"a", 1}) + recordedLine({1, 1}, eventOf(1)));
    awaitOutput(eventOf(1));
    EXPECT_EQ(interrupt(),
              "ostrovia-replay: waits for input at " + path +
                  "\na: 1 messages, files 1, run 00000000000000a1\n  recorder a in chain site\n"
                  "  no counts yet; no end\n"
                  "read 1, reached the host 1, dropped 0, malformed 0, T ms\n");
    fs::remove_all(folder_.path("rec"));
  }
}

TEST_F(FollowingTest, PlainFileMayBeginLater) {
  follow("x.ndjson");
  awaitFile("diagnostics", "ostrovia-replay: waits for input at x.ndjson\n");
  append("x.ndjson", eventOf(1));
  awaitOutput(eventOf(1));
  interrupt();
}

TEST_F(FollowingTest, PluginsOwnLinesAppearAsTheyCome) {
  const std::string created = "ostrovia-replay: the plug-in wrote to standard error: created\n";
  const std::string batch = "log:1: the plug-in wrote to standard error: a batch\n";
  append("log", eventOf(1));
  child_ = start(VLT_REPLAY_PATH,
                 {"--follow", "log", "--plugin", VLT_FAULTY_PLUGIN_PATH, "--tenant-id", "talk"});
  awaitFile("diagnostics", created + batch);
  append("log", eventOf(2));
  awaitOutput(eventOf(1) + eventOf(2));
  EXPECT_EQ(interrupt(), created + batch +
                             "log:1: the plug-in wrote 2 times to standard error: a batch\n"
                             "read 2, reached the host 2, dropped 0, malformed 0, T ms\n");
}

TEST_F(FollowingTest, WaitForTheFirstFileCanBeInterrupted) {
  follow("rec");
  awaitFile("diagnostics", "ostrovia-replay: waits for input at rec\n");
  EXPECT_EQ(interrupt(), "ostrovia-replay: waits for input at rec\n");
}

TEST_F(FollowingTest, FolderThatDoesNotExistIsRefused) {
  const result_t result = run({"--follow", "typo/rec"});
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.diagnostics, "ostrovia-replay: typo/rec: No such file or directory\n");
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

TEST_F(FollowingTest, TerminalShowsOneSummaryThatGrows) {
  append("log", eventOf(1));
  const int terminal = startOnTerminal(error_descriptor_, {"--follow", "--summary", "log"}, child_);
  Screen screen(terminal);
  screen.await("1 messages, ");
  EXPECT_EQ(screen.line(4), "all                        0           1           0");
  append("log", eventOf(2));
  screen.await("2 messages, ");
  EXPECT_EQ(screen.line(4), "all                        0           2           0");
  kill(child_, SIGINT);
  screen.await("read 2, ");
  EXPECT_EQ(waitFor(child_).status, 130);
  EXPECT_EQ(screen.line(4), "all                        0           2           0");
  EXPECT_EQ(screen.height(), 11U);
  close(terminal);
}

TEST_F(FollowingTest, BatchesAreNotHeldBackUntilTheyAreFull) {
  append("log", eventOf(1) + eventOf(2) + eventOf(3));
  child_ = start(VLT_REPLAY_PATH, {"--follow", "log", "--batch-size", "2"});
  awaitOutput(eventOf(1) + eventOf(2) + eventOf(3));
  interrupt();
}

} // namespace com::velanto::connectivity::test
