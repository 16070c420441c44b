// Levels per category, and the way of a line to its sink.
#include "host/logging.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tests/standin/stderr_packets.hpp"
#include "tests/standin/values.hpp"

namespace standin::test {
namespace {

struct line_t {
  std::string category;
  vlt_log_level_t level;
  std::string text;
  bool operator==(const line_t&) const = default;
};

void keepLine(void* lines, const char* category, vlt_log_level_t level, const char* text) {
  static_cast<std::vector<line_t>*>(lines)->push_back({category, level, text});
}

class Logging : public Blocks {
 protected:
  void TearDown() override {
    standin_reset_logging();
    Blocks::TearDown();
  }

  void captureLines() { standin_set_log_sink(keepLine, &lines_); }

  std::vector<line_t> lines_;
};

TEST_F(Logging, LevelIsThreeUntilSet) {
  EXPECT_EQ(vlt_get_log_level("any"), 3);
  EXPECT_EQ(vlt_get_log_level(nullptr), 3);
}

TEST_F(Logging, LevelIsSetPerCategory) {
  EXPECT_TRUE(standin_set_log_level("a", 6));
  EXPECT_TRUE(standin_set_log_level("ab", -2));
  EXPECT_EQ(vlt_get_log_level("a"), 6);
  EXPECT_EQ(vlt_get_log_level("ab"), -2);
  EXPECT_EQ(vlt_get_log_level("b"), 3);
}

TEST_F(Logging, LevelCanBeSetAgain) {
  standin_set_log_level("a", 6);
  standin_set_log_level("a", 1);
  EXPECT_EQ(vlt_get_log_level("a"), 1);
}

TEST_F(Logging, CategoryIsCopiedWhenItsLevelIsSet) {
  std::string name = "connectivity.codec.chain";
  standin_set_log_level(name.c_str(), 6);
  name = "gone";
  EXPECT_EQ(vlt_get_log_level("connectivity.codec.chain"), 6);
}

TEST_F(Logging, DefaultLevelIsForAllOthers) {
  standin_set_log_level("a", 6);
  standin_set_default_log_level(2);
  EXPECT_EQ(vlt_get_log_level("a"), 6);
  EXPECT_EQ(vlt_get_log_level("b"), 2);
}

TEST_F(Logging, ResetForgetsLevelsAndSink) {
  captureLines();
  standin_set_log_level("a", 6);
  standin_set_default_log_level(2);
  standin_reset_logging();
  EXPECT_EQ(vlt_get_log_level("a"), 3);
  StderrPackets written;
  vlt_log_at("a", 1, "text");
  EXPECT_EQ(written.take(), std::vector<std::string>{"text\n"});
  EXPECT_TRUE(lines_.empty());
}

TEST_F(Logging, LineIsFormattedAndReachesTheSink) {
  captureLines();
  vlt_log_at("category", 2, "<%s> %d of %.1f", "prefix", 3, 4.5);
  EXPECT_EQ(lines_, (std::vector<line_t>{{"category", 2, "<prefix> 3 of 4.5"}}));
}

TEST_F(Logging, LineAboveTheLevelReachesTheSinkToo) {
  captureLines();
  standin_set_log_level("category", 2);
  vlt_log_at("category", 6, "trace");
  EXPECT_EQ(lines_, (std::vector<line_t>{{"category", 6, "trace"}}));
}

TEST_F(Logging, NullCategoryIsAnEmptyOne) {
  captureLines();
  vlt_log_at(nullptr, 2, "text");
  EXPECT_EQ(lines_, (std::vector<line_t>{{"", 2, "text"}}));
}

// Around the size of the buffer on the stack, and far beyond it.
TEST_F(Logging, LinesOfAnyLengthAreWhole) {
  captureLines();
  for (const std::size_t length : {0U, 1022U, 1023U, 1024U, 1025U, 1'000'000U}) {
    const std::string text(length, 'x');
    vlt_log_at("category", 2, "%s", text.c_str());
    EXPECT_TRUE(lines_.back().text == text) << "length " << length;
  }
}

TEST_F(Logging, PercentSignsInArgumentsAreText) {
  captureLines();
  vlt_log_at("category", 2, "<%s> ", "%n%s");
  EXPECT_EQ(lines_.back().text, "<%n%s> ");
}

TEST_F(Logging, DefaultSinkWritesEachLineInOneWrite) {
  StderrPackets written;
  vlt_log_at("category", 2, "first %d", 1);
  vlt_log_at("category", 2, "%s", std::string(2000, 'x').c_str());
  EXPECT_EQ(written.take(), (std::vector<std::string>{"first 1\n", std::string(2000, 'x') + "\n"}));
}

void logAgain(void* left, const char*, vlt_log_level_t, const char*) {
  if (--*static_cast<int*>(left) > 0) vlt_log_at("category", 2, "again");
}

TEST_F(Logging, SinkMayLogItself) {
  int left = 3;
  standin_set_log_sink(logAgain, &left);
  vlt_log_at("category", 2, "first");
  EXPECT_EQ(left, 0);
}

void countLine(void* count, const char*, vlt_log_level_t, const char*) {
  static_cast<std::atomic<int>*>(count)->fetch_add(1);
}

TEST_F(Logging, ThreadsMayLogAndSetLevelsTogether) {
  std::atomic<int> count{0};
  standin_set_log_sink(countLine, &count);
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t] {
      const std::string category = "category" + std::to_string(t);
      for (int i = 0; i < 500; ++i) {
        standin_set_log_level(category.c_str(), i);
        EXPECT_EQ(vlt_get_log_level(category.c_str()), i);
        vlt_log_at(category.c_str(), 2, "%d", i);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(count, 2000);
}

} // namespace
} // namespace standin::test
