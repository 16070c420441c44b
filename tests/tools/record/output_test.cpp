#include "tools/record/output.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "tests/support/values.hpp"
#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::test {

TEST(Output, SmallPiecesWaitForTheFlush) {
  std::ostringstream stream;
  tools::Output output(stream, "cannot write");
  output.write("a");
  output.write("b");
  EXPECT_EQ(stream.str(), "");
  output.flush();
  EXPECT_EQ(stream.str(), "ab");
}

TEST(Output, LargePiecesAreWrittenAtOnce) {
  std::ostringstream stream;
  tools::Output output(stream, "cannot write");
  output.write(std::string(100000, 'x'));
  EXPECT_EQ(stream.str().size(), 100000u);
}

TEST(Output, FullDeviceIsReportedWithItsReason) {
  std::ofstream stream("/dev/full");
  tools::Output output(stream, "cannot write the report");
  output.write("a");
  EXPECT_EQ(errorOf([&] { output.flush(); }), "cannot write the report: No space left on device");
}

TEST(Output, StreamWithoutAReasonIsReportedToo) {
  std::ostringstream stream;
  stream.setstate(std::ios::badbit);
  tools::Output output(stream, "cannot write");
  output.write("a");
  try {
    output.flush();
    FAIL() << "nothing was thrown";
  } catch (const tools::ReplayError& error) {
    EXPECT_STREQ(error.what(), "cannot write");
    EXPECT_EQ(error.status(), tools::EXIT_IO);
  }
}

} // namespace com::velanto::connectivity::test
