// The recorder as a whole: batches pass as they came, and are on the disk after the shutdown.
#include "recorder/ostrovia_notifications_recorder.hpp"

#include <gmock/gmock.h>

#include "tests/recorder/recorder_fixture.hpp"

namespace com::velanto::connectivity::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class RecorderTest : public RecorderFixture {};

TEST_F(RecorderTest, WritesHeadMessagesAndFoot) {
  const auto recorder = make();
  recorder->start();
  send(*recorder, event("a"));
  sendBatch(*recorder, 2);
  recorder->shutdown();
  for (const std::string& line : folder_.lines()) std::cout << line << '\n';
  EXPECT_THAT(folder_.recordings(), ElementsAre("before-site.000001.ndjson"));
}

} // namespace
} // namespace com::velanto::connectivity::test
