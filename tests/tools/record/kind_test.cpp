#include "tools/record/kind.hpp"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

using tools::Kind;

using KindTest = HostFixture;

TEST_F(KindTest, SegmentAfterTheSecondSlashDecides) {
  const std::vector<std::pair<const char*, Kind>> rows = {
      {"t/s/alarms/1", Kind::ALARMS},
      {"t/s/events", Kind::EVENTS},
      {"t/s/managedobjects/1", Kind::MANAGEDOBJECTS},
      {"t/s/measurements/1/2", Kind::MEASUREMENTS},
      {"//operations/1", Kind::OPERATIONS},
      {"t/s/alarmsArchive/1", Kind::ALARMS},
      {"t/s/Alarms/1", Kind::OTHER},
      {"t/s/inventory/alarms", Kind::OTHER},
      {"t/alarms", Kind::OTHER},
      {"", Kind::OTHER}};
  for (const auto& [path, kind] : rows) EXPECT_EQ(tools::kindOfPath(path), kind) << path;
}

TEST_F(KindTest, PathThatIsNoStringHasNoKind) {
  const tools::MetadataReader reader;
  EXPECT_EQ(reader.kindOf(notification("t/s/alarms/1", mapOf())), Kind::ALARMS);
  EXPECT_EQ(reader.kindOf(Message(whole(1))), Kind::NONE);
  EXPECT_EQ(reader.kindOf(Message(whole(1), mapOf("pulsarPath", whole(1)))), Kind::NONE);
}

TEST_F(KindTest, ChannelIsAStringOrNothing) {
  const tools::MetadataReader reader;
  EXPECT_EQ(reader.channelOf(Message(whole(1), mapOf("vlt.channel", text("c")))), "c");
  EXPECT_EQ(reader.channelOf(Message(whole(1), mapOf("vlt.channel", whole(1)))), "");
  EXPECT_EQ(reader.channelOf(Message()), "");
}

} // namespace com::velanto::connectivity::test
