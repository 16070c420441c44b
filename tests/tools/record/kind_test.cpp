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
      {"t/s/alarms/1", Kind::alarms},
      {"t/s/events", Kind::events},
      {"t/s/managedobjects/1", Kind::managedobjects},
      {"t/s/measurements/1/2", Kind::measurements},
      {"//operations/1", Kind::operations},
      {"t/s/alarmsArchive/1", Kind::alarms},
      {"t/s/Alarms/1", Kind::other},
      {"t/s/inventory/alarms", Kind::other},
      {"t/alarms", Kind::other},
      {"", Kind::other}};
  for (const auto& [path, kind] : rows) EXPECT_EQ(tools::kindOfPath(path), kind) << path;
}

TEST_F(KindTest, PathThatIsNoStringHasNoKind) {
  const tools::MetadataReader reader;
  EXPECT_EQ(reader.kindOf(notification("t/s/alarms/1", map_of())), Kind::alarms);
  EXPECT_EQ(reader.kindOf(Message(whole(1))), Kind::none);
  EXPECT_EQ(reader.kindOf(Message(whole(1), map_of("pulsarPath", whole(1)))), Kind::none);
}

TEST_F(KindTest, ChannelIsAStringOrNothing) {
  const tools::MetadataReader reader;
  EXPECT_EQ(reader.channelOf(Message(whole(1), map_of("vlt.channel", text("c")))), "c");
  EXPECT_EQ(reader.channelOf(Message(whole(1), map_of("vlt.channel", whole(1)))), "");
  EXPECT_EQ(reader.channelOf(Message()), "");
}

} // namespace com::velanto::connectivity::test
