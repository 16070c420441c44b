// Taking fields out of a notification and putting them into the event: what is moved rather than
// copied, and what no notification can ask for.
#include "codec/payload_fields.hpp"

#include <gmock/gmock.h>

#include <vector>

#include "codec/constants.hpp"
#include "tests/codec/notifications.hpp"
#include "tests/support/stderr_capture.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class Extract : public HostFixture {};
class Remap : public HostFixture {};
class DateTime : public HostFixture {};
class Remaining : public HostFixture {};

TEST_F(Extract, PresentEntryIsReturnedAndRemoved) {
  map_t map = map_of("a", list_of(whole(1)), "b", whole(2));
  const std::uint64_t list = block_of(at(map, "a"));
  const boost::optional<data_t> value = extractFromMapIfPresent(map, text("a"));
  ASSERT_TRUE(value.has_value());
  EXPECT_EQ(block_of(*value), list);
  EXPECT_TRUE(same(map, map_of("b", whole(2))));
  EXPECT_EQ(map.table()->deleted, 1);
  EXPECT_FALSE(extractFromMapIfPresent(map, text("a")).has_value());
  EXPECT_EQ(map.size(), 1U);
}

TEST_F(Extract, MissingKeyThatIsNoStringIsTheTypedGetsError) {
  map_t map;
  std::string error;
  const auto extract = [&] { (void)extractFromMapOrThrow(map, whole(1), "here"); };
  stderr_of([&] { error = error_of(extract); });
  EXPECT_EQ(error, "Incorrect type in get (you asked for string but it's actually integer)");
}

TEST_F(Extract, MissingKeyWithANullTextReadsAsTheEmptyText) {
  map_t map;
  EXPECT_EQ(error_of([&] { (void)extractFromMapOrThrow(map, null_text(), "here"); }),
            "Required key '' missing from here");
}

TEST_F(Extract, SourceIdIsAllThatIsLeftOfTheSource) {
  PulsarMessageDisassembler notification;
  data_t source = map_of("name", text("dev"), "id", text("7"));
  EXPECT_TRUE(same(reduceToId(std::move(source), notification), text("7")));
  EXPECT_FALSE(notification.getFault());
  EXPECT_TRUE(same(notification.getSpareParts().take(DATA_T_id), text("id")));
}

TEST_F(Extract, StepsLeaveAFaultyNotificationAlone) {
  PulsarMessageDisassembler notification =
      wrapped(map_of("text", text("a"), "time", text("2023-04-05T06:07:08Z")));
  notification.getFault().note(std::runtime_error("first"));
  EXPECT_TRUE(takeField(notification, DATA_T_text).empty());
  (void)takeTime(notification);
  (void)reduceToId(map_of("id", text("7")), notification);
  (void)takeField(notification, DATA_T_source);
  EXPECT_STREQ(notification.getFault().what(), "first");
  EXPECT_TRUE(same(notification.getPayloadMap(),
                   map_of("text", text("a"), "time", text("2023-04-05T06:07:08Z"))));
}

TEST_F(Remap, EntryIsMovedUnderItsNewName) {
  data_t list = list_of(whole(1));
  const std::uint64_t block = block_of(list);
  PulsarMessageDisassembler notification = wrapped(map_of("from", std::move(list)));
  PlainBuilder builder;
  data_t to = text("to");
  const std::uint64_t key = block_of(to);
  remapPayloadElement(text("from"), std::move(to), notification, builder);
  EXPECT_TRUE(same(builder.fields, map_of("id", text("42"), "to", list_of(whole(1)))));
  EXPECT_EQ(block_of(at(builder.fields, "to")), block);
  EXPECT_EQ(key_block_of(builder.fields, text("to")), key);
  EXPECT_TRUE(notification.getPayloadMap().empty());
}

// The field that "lastUpdated" becomes.
data_t dateTimeField(data_t&& value) {
  PulsarMessageDisassembler notification = wrapped(map_of("lastUpdated", std::move(value)));
  PlainBuilder builder;
  convertDateTimePayloadElement(DATA_T_lastUpdated, notification, builder);
  EXPECT_TRUE(notification.getPayloadMap().empty());
  return std::move(at(builder.fields, "lastUpdated"));
}

TEST_F(DateTime, UnreadableTextIsCarriedOverAsItIs) {
  for (const char* const content : {"not a date", "", "2023-04-05T06:07:08"}) {
    data_t value = text(content);
    const std::uint64_t block = block_of(value);
    const data_t field = dateTimeField(std::move(value));
    EXPECT_TRUE(same(field, text(content)));
    EXPECT_EQ(block_of(field), block) << content;
  }
  EXPECT_TRUE(same(dateTimeField(borrowed("not a date")), borrowed("not a date")));
  EXPECT_EQ(block_of(dateTimeField(null_text())), 0U);
}

TEST_F(Remaining, KeysAndValuesAreMovedNeverCopied) {
  map_t payload = map_of("s", text("x"), "l", list_of(whole(1)), "m", map_of("a", whole(1)), "b",
                         bytes("x"), "c", custom(), borrowed("lent"), borrowed("y"));
  std::vector<std::pair<std::uint64_t, std::uint64_t>> before;
  for (const auto& [key, value] : payload) before.emplace_back(block_of(key), block_of(value));
  PulsarMessageDisassembler notification = wrapped(std::move(payload));
  PlainBuilder builder;
  remove(builder.fields, "id");
  standin_reset_calls();
  copyOverRemainingPayloadElements(notification, builder);
  EXPECT_EQ(standin_calls(STANDIN_COPY_DATA) + standin_calls(STANDIN_COPY_STRING), 0);
  std::vector<std::pair<std::uint64_t, std::uint64_t>> after;
  for (const auto& [key, value] : builder.fields)
    after.emplace_back(block_of(key), block_of(value));
  EXPECT_THAT(after, ::testing::UnorderedElementsAreArray(before));
  EXPECT_TRUE(same(at(builder.fields, borrowed("lent")), borrowed("y")));
}

// An entry whose key the map itself would refuse, as a host's own table may hold one.
map_t mapWithCustomKey() {
  map_t map = map_of(whole(1), text("v"));
  (*map.begin()).first = custom();
  return map;
}

TEST_F(Remaining, CustomKeyIsRefused) {
  PulsarMessageDisassembler notification = wrapped(mapWithCustomKey());
  PlainBuilder builder;
  EXPECT_EQ(error_of([&] { copyOverRemainingPayloadElements(notification, builder); }),
            "Cannot use custom values as a key");
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
