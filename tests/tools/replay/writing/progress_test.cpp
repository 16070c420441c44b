#include "tools/replay/writing/progress.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace com::velanto::connectivity::test {

using seconds_t = std::chrono::duration<double>;

TEST(ProgressLine, ShareRateAndTimeLeftAreShown) {
  EXPECT_EQ(tools::progressLine(5000, seconds_t(10), 0.25), " 25 %, 500 messages/s, 0:30 left");
  EXPECT_EQ(tools::progressLine(5000, seconds_t(100), 0.1), " 10 %, 50 messages/s, 15:00 left");
}

TEST(ProgressLine, WithoutAnEndThereIsNoShare) {
  EXPECT_EQ(tools::progressLine(512, seconds_t(2), {}), "512 messages, 256 messages/s");
}

TEST(TerminalTest, StatusLineGivesWayToOutput) {
  std::stringbuf screen;
  {
    tools::Terminal terminal(screen);
    std::ostream out(&terminal);
    terminal.show("a");
    out << "line\n"
        << "next\n";
    terminal.show("b");
  }
  EXPECT_EQ(screen.str(), "\r\x1B[Ka\r\x1B[Kline\nnext\n\r\x1B[Kb\r\x1B[K");
}

TEST(TerminalTest, SeveralStatusLinesGiveWayTogether) {
  std::stringbuf screen;
  tools::Terminal terminal(screen);
  terminal.show("a\nb\nc");
  terminal.show("d");
  EXPECT_EQ(screen.str(), "\r\x1B[Ka\nb\nc\r\x1B[K\x1B[A\r\x1B[K\x1B[A\r\x1B[Kd");
}

TEST(ProgressTest, PauseShowsTheLinesAbove) {
  std::stringbuf screen;
  tools::Terminal terminal(screen);
  const auto unknown = []() -> std::optional<double> { return {}; };
  tools::Progress alone(terminal, unknown);
  alone.pause();
  EXPECT_EQ(screen.str(), "");
  tools::Progress progress(terminal, unknown, [] { return std::string("summary\n"); });
  progress.pause();
  EXPECT_TRUE(screen.str().starts_with("\r\x1B[Ksummary\n0 messages, 0 ")) << screen.str();
}

} // namespace com::velanto::connectivity::test
