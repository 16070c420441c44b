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

} // namespace com::velanto::connectivity::test
