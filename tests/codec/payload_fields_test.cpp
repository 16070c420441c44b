// Fields move from a notification into the event and are never copied. The lines of
// tools/check/conformance/ state the results.
#include "codec/payload_fields.hpp"

#include <gmock/gmock.h>

#include <vector>

#include "tests/codec/notifications.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class Extract : public HostFixture {};
class Remaining : public HostFixture {};

TEST_F(Extract, PresentEntryIsReturnedAndRemoved) {
  map_t map = mapOf("name", listOf(whole(1)), "b", whole(2));
  const std::uint64_t list = blockOf(at(map, "name"));
  const boost::optional<data_t> value = extractFromMapIfPresent(map, DATA_T_name);
  ASSERT_TRUE(value.has_value());
  EXPECT_EQ(blockOf(*value), list);
  EXPECT_TRUE(same(map, mapOf("b", whole(2))));
  EXPECT_EQ(map.table()->deleted, 1);
  EXPECT_FALSE(extractFromMapIfPresent(map, DATA_T_name).has_value());
  EXPECT_EQ(map.size(), 1U);
}

TEST_F(Extract, SourceIdLeavesItsKeyAsSpare) {
  PulsarMessageDisassembler notification = wrapped(mapOf());
  data_t source = mapOf("name", text("dev"), "id", text("7"));
  const std::uint64_t key = keyBlockOf(source.get<map_t>(), text("id"));
  EXPECT_TRUE(same(extractSourceId(std::move(source), notification), text("7")));
  EXPECT_FALSE(notification.getFault());
  EXPECT_EQ(blockOf(notification.getSpareParts().take(DATA_T_id)), key);
}

TEST_F(Extract, FaultyNotificationIsLeftAlone) {
  PulsarMessageDisassembler notification =
      wrapped(mapOf("text", text("a"), "time", text("2023-04-05T06:07:08Z")));
  notification.getFault().note(std::runtime_error("first"));
  EXPECT_TRUE(extractField(notification, DATA_T_text).empty());
  (void)extractTimeTimestamp(notification);
  (void)extractSourceId(mapOf("id", text("7")), notification);
  (void)extractField(notification, DATA_T_source);
  EXPECT_STREQ(notification.getFault().what(), "first");
  EXPECT_TRUE(same(notification.getPayloadMap(),
                   mapOf("text", text("a"), "time", text("2023-04-05T06:07:08Z"))));
}

TEST_F(Remaining, KeysAndValuesAreMovedNeverCopied) {
  map_t payload = mapOf("s", text("x"), "l", listOf(whole(1)), "m", mapOf("a", whole(1)), "b",
                        bytes("x"), "c", custom(), borrowed("lent"), borrowed("y"));
  std::vector<std::pair<std::uint64_t, std::uint64_t>> before;
  for (const auto& [key, value] : payload) before.emplace_back(blockOf(key), blockOf(value));
  PulsarMessageDisassembler notification = wrapped(std::move(payload));
  PlainBuilder builder;
  remove(builder.fields, "id");
  standin_reset_calls();
  copyOverRemainingPayloadElements(notification, builder);
  EXPECT_EQ(standin_calls(STANDIN_COPY_DATA) + standin_calls(STANDIN_COPY_STRING), 0);
  std::vector<std::pair<std::uint64_t, std::uint64_t>> after;
  for (const auto& [key, value] : builder.fields) after.emplace_back(blockOf(key), blockOf(value));
  EXPECT_THAT(after, ::testing::UnorderedElementsAreArray(before));
  EXPECT_TRUE(same(at(builder.fields, borrowed("lent")), borrowed("y")));
}

// An entry with a key that the map itself refuses. A host's own table may hold such a key.
map_t mapWithCustomKey() {
  map_t map = mapOf(whole(1), text("v"));
  (*map.begin()).first = custom();
  return map;
}

TEST_F(Remaining, CustomKeyIsRefused) {
  PulsarMessageDisassembler notification = wrapped(mapWithCustomKey());
  PlainBuilder builder;
  EXPECT_EQ(errorOf([&] { copyOverRemainingPayloadElements(notification, builder); }),
            "Cannot use custom values as a key");
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
