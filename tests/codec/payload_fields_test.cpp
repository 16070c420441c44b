// Taking fields out of a notification and putting them into the event: what is removed, what is
// moved, what replaces what, and every error text.
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
class Time : public HostFixture {};
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

TEST_F(Extract, AbsentKeyLeavesTheMapUntouched) {
  map_t map = map_of("a", whole(1));
  const map_t before = map.copy();
  const std::uint64_t table = block_of(map);
  EXPECT_FALSE(extractFromMapIfPresent(map, text("b")).has_value());
  EXPECT_FALSE(extractFromMapIfPresent(map, borrowed("a")).has_value());
  EXPECT_TRUE(same(map, before));
  EXPECT_EQ(block_of(map), table);
  EXPECT_EQ(map.table()->deleted, 0);
}

TEST_F(Extract, MapWithoutATableHasNothing) {
  map_t map;
  EXPECT_FALSE(extractFromMapIfPresent(map, DATA_T_id).has_value());
  EXPECT_EQ(map.table(), nullptr);
}

TEST_F(Extract, EmptyValueIsPresent) {
  map_t map = map_of("a", data_t());
  const boost::optional<data_t> value = extractFromMapIfPresent(map, text("a"));
  ASSERT_TRUE(value.has_value());
  EXPECT_TRUE(value->empty());
  EXPECT_TRUE(map.empty());
}

TEST_F(Extract, BorrowedValueStaysBorrowed) {
  map_t map = map_of("a", borrowed("x"));
  const data_t value = extractFromMapOrThrow(map, text("a"), "here");
  EXPECT_TRUE(same(value, borrowed("x")));
}

TEST_F(Extract, RequiredEntryIsReturnedAndRemoved) {
  map_t map = map_of("id", text("7"));
  EXPECT_TRUE(same(extractFromMapOrThrow(map, DATA_T_id, "message payload"), text("7")));
  EXPECT_TRUE(map.empty());
}

TEST_F(Extract, MissingRequiredKeyNamesKeyAndPlace) {
  map_t map = map_of("a", whole(1));
  const auto error = [&](const data_t& key, const char* where) {
    return error_of([&] { (void)extractFromMapOrThrow(map, key, where); });
  };
  EXPECT_EQ(error(DATA_T_id, "message payload"), "Required key 'id' missing from message payload");
  EXPECT_EQ(error(DATA_T_id, IN_MESSAGE_PAYLOAD), "Required key 'id' missing from message payload");
  EXPECT_EQ(error(DATA_T_id, IN_SOURCE), "Required key 'id' missing from source");
  EXPECT_EQ(error(borrowed("a"), ""), "Required key 'a' missing from ");
  EXPECT_TRUE(same(map, map_of("a", whole(1))));
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

TEST_F(Extract, SourceWithoutAnIdIsAFault) {
  PulsarMessageDisassembler notification;
  (void)reduceToId(map_of("name", text("dev")), notification);
  ASSERT_TRUE(notification.getFault());
  EXPECT_STREQ(notification.getFault().what(), "Required key 'id' missing from source");

  PulsarMessageDisassembler other;
  (void)reduceToId(data_t(), other);
  ASSERT_TRUE(other.getFault());
  EXPECT_STREQ(other.getFault().what(), "Problem with key 'source': Get from empty");
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

TEST_F(Time, IsTakenOutAndParsed) {
  PulsarMessageDisassembler notification =
      wrapped(map_of("time", text("2023-04-05T06:07:08.123Z"), "a", whole(1)));
  EXPECT_EQ(extractTimeTimestampOrThrow(notification), 1680674828.123);
  EXPECT_TRUE(same(notification.getPayloadMap(), map_of("a", whole(1))));
}

TEST_F(Time, BorrowedTextIsRead) {
  PulsarMessageDisassembler notification =
      wrapped(map_of("time", borrowed("2023-04-05T06:07:08Z")));
  EXPECT_EQ(extractTimeTimestampOrThrow(notification), 1680674828.0);
}

TEST_F(Time, FaultOfAnEarlierCallIsForgotten) {
  PulsarMessageDisassembler notification = wrapped(map_of("time", text("yesterday")));
  const auto error = [&] {
    return error_of([&] { (void)extractTimeTimestampOrThrow(notification); });
  };
  EXPECT_EQ(error(), "Error parsing timestamp 'yesterday' in key 'time'");
  EXPECT_EQ(error(), "Required key 'time' missing from message payload");
  notification.getPayloadMap().insert(text("time"), text("2023-04-05T06:07:08Z"));
  EXPECT_EQ(extractTimeTimestampOrThrow(notification), 1680674828.0);
}

TEST_F(Time, FaultsNameTheKey) {
  const auto error = [](map_t&& payload) {
    PulsarMessageDisassembler notification = wrapped(std::move(payload));
    std::string result;
    stderr_of([&] { result = error_of([&] { (void)extractTimeTimestampOrThrow(notification); }); });
    EXPECT_TRUE(notification.getPayloadMap().empty()); // "time" is gone all the same
    return result;
  };
  EXPECT_EQ(error(map_of()), "Required key 'time' missing from message payload");
  EXPECT_EQ(error(map_of("time", text("yesterday"))),
            "Error parsing timestamp 'yesterday' in key 'time'");
  EXPECT_EQ(error(map_of("time", text(""))), "Error parsing timestamp '' in key 'time'");
  EXPECT_EQ(error(map_of("time", null_text())), "Error parsing timestamp '' in key 'time'");
  EXPECT_EQ(error(map_of("time", whole(1))),
            "Problem with key 'time': Incorrect type in get (you asked for string but it's "
            "actually integer)");
  EXPECT_EQ(error(map_of("time", data_t())), "Problem with key 'time': Get from empty");
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

TEST_F(Remap, FieldOfThatNameIsReplaced) {
  PulsarMessageDisassembler notification = wrapped(map_of("from", borrowed("new")));
  PlainBuilder builder;
  remapPayloadElement(text("from"), text("id"), notification, builder);
  EXPECT_TRUE(same(builder.fields, map_of("id", borrowed("new"))));
}

TEST_F(Remap, AbsentEntryChangesNothing) {
  PulsarMessageDisassembler notification = wrapped(map_of("a", whole(1)));
  PlainBuilder builder;
  remapPayloadElement(text("from"), text("id"), notification, builder);
  EXPECT_TRUE(same(builder.fields, map_of("id", text("42"))));
  EXPECT_TRUE(same(notification.getPayloadMap(), map_of("a", whole(1))));
}

// The field that "lastUpdated" becomes.
data_t dateTimeField(data_t&& value) {
  PulsarMessageDisassembler notification = wrapped(map_of("lastUpdated", std::move(value)));
  PlainBuilder builder;
  convertDateTimePayloadElement(DATA_T_lastUpdated, notification, builder);
  EXPECT_TRUE(notification.getPayloadMap().empty());
  return std::move(at(builder.fields, "lastUpdated"));
}

TEST_F(DateTime, ReadableTextBecomesSeconds) {
  EXPECT_TRUE(same(dateTimeField(text("2023-04-05T06:07:08.123Z")), real(1680674828.123)));
  EXPECT_TRUE(same(dateTimeField(borrowed("2023-04-05T06:07:08Z")), real(1680674828.0)));
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

TEST_F(DateTime, OtherKindsAreCarriedOverAsTheyAre) {
  EXPECT_TRUE(same(dateTimeField(whole(12)), whole(12)));
  EXPECT_TRUE(same(dateTimeField(real(1.5)), real(1.5)));
  EXPECT_TRUE(same(dateTimeField(truth(true)), truth(true)));
  EXPECT_TRUE(same(dateTimeField(decimal(9)), decimal(9)));
  EXPECT_TRUE(same(dateTimeField(data_t()), data_t()));
  EXPECT_TRUE(same(dateTimeField(map_of("a", whole(1))), map_of("a", whole(1))));
  EXPECT_TRUE(same(dateTimeField(list_of(whole(1))), list_of(whole(1))));
  EXPECT_TRUE(same(dateTimeField(bytes("2023-04-05T06:07:08Z")), bytes("2023-04-05T06:07:08Z")));
  EXPECT_EQ(dateTimeField(custom()).type_tag(), static_cast<std::uint32_t>(VLT_TAG_CUSTOM));
  EXPECT_EQ(dateTimeField(tagged(77, 5)).type_tag(), 77U);
}

TEST_F(DateTime, FieldOfThatNameIsReplacedAndAbsentOneChangesNothing) {
  PulsarMessageDisassembler notification = wrapped(map_of("id", text("2023-04-05T06:07:08Z")));
  PlainBuilder builder;
  convertDateTimePayloadElement(DATA_T_creationTime, notification, builder);
  EXPECT_TRUE(same(builder.fields, map_of("id", text("42"))));
  convertDateTimePayloadElement(DATA_T_id, notification, builder);
  EXPECT_TRUE(same(builder.fields, map_of("id", real(1680674828.0))));
}

TEST_F(Remaining, AllThatIsLeftReplacesFieldsOfTheSameNames) {
  PulsarMessageDisassembler notification =
      wrapped(map_of("o6a_Position", map_of("lat", real(1)), "id", whole(9), "none", data_t()));
  PlainBuilder builder;
  builder.fields[text("kept")] = truth(true);
  copyOverRemainingPayloadElements(notification, builder);
  EXPECT_TRUE(same(builder.fields, map_of("id", whole(9), "kept", truth(true), "o6a_Position",
                                          map_of("lat", real(1)), "none", data_t())));
  EXPECT_TRUE(notification.getPayloadMap().empty());
  EXPECT_EQ(block_of(notification.getPayloadMap()), 0U);
}

TEST_F(Remaining, OnlyWhatNoStepTookIsLeft) {
  PulsarMessageDisassembler notification =
      wrapped(map_of("time", text("2023-04-05T06:07:08Z"), "a", whole(1), "b", whole(2)));
  PlainBuilder builder;
  (void)extractTimeTimestampOrThrow(notification);
  remapPayloadElement(text("a"), text("c"), notification, builder);
  copyOverRemainingPayloadElements(notification, builder);
  EXPECT_TRUE(same(builder.fields, map_of("id", text("42"), "b", whole(2), "c", whole(1))));
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

TEST_F(Remaining, KeysOfAnyKindAreCarriedOver) {
  const auto payload = [] {
    return map_of(whole(1), text("int"), real(1), text("double"), truth(false), text("no"),
                  decimal(1), text("dec"), list_of(whole(1)), text("list"), map_of("a", whole(1)),
                  text("map"), bytes("k"), text("buffer"), borrowed("id"), text("lent"));
  };
  PulsarMessageDisassembler notification = wrapped(payload());
  PlainBuilder builder;
  copyOverRemainingPayloadElements(notification, builder);
  map_t expected = payload();
  expected[text("id")] = text("42"); // a borrowed key is another key
  EXPECT_TRUE(same(builder.fields, expected));
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

TEST_F(Remaining, KeysOfUnknownKindsAreAcceptedAndEqualNothing) {
  PulsarMessageDisassembler notification =
      wrapped(map_of(tagged(11, 1), text("a"), tagged(11, 1), text("b")));
  PlainBuilder builder;
  copyOverRemainingPayloadElements(notification, builder);
  EXPECT_EQ(builder.fields.size(), 3U);
}

TEST_F(Remaining, PayloadThatIsNoMapIsTheTypedGetsError) {
  PulsarMessageDisassembler notification;
  PlainBuilder builder;
  EXPECT_EQ(error_of([&] { copyOverRemainingPayloadElements(notification, builder); }),
            "Get from empty");
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
