// The wrapped notification: the start of its type segment, the moves of its payload, and the remains
// of a dropped notification.
#include "codec/pulsar_message_disassembler.hpp"

#include "codec/payload_fields.hpp"
#include "tests/codec/notifications.hpp"
#include "tests/support/stderr_capture.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class Disassembler : public HostFixture {
 protected:
  static PulsarMessageDisassembler atPath(data_t&& path) {
    return PulsarMessageDisassembler(Message(mapOf(), mapOf("pulsarPath", std::move(path))));
  }
};
class OnlyId : public HostFixture {};

TEST_F(Disassembler, TypePointsIntoTheStoredPath) {
  const char* const path = "a/b/alarms/1";
  const PulsarMessageDisassembler notification = atPath(borrowed(path));
  EXPECT_EQ(notification.getStartCharOfMessageType(), path + 4);
  const char* const without_type = "a/alarms";
  const PulsarMessageDisassembler other = atPath(borrowed(without_type));
  EXPECT_EQ(other.getStartCharOfMessageType(), without_type + 8);
}

TEST_F(Disassembler, MissingPathIsReported) {
  const PulsarMessageDisassembler none = wrapped(mapOf());
  EXPECT_EQ(errorOf([&] { (void)none.getStartCharOfMessageType(); }), "No Pulsar path found");
}

TEST_F(Disassembler, RemainingPayloadIsMovedOutOnce) {
  data_t payload = mapOf("a", whole(1));
  const std::uint64_t table = blockOf(payload);
  PulsarMessageDisassembler notification = wrapped(std::move(payload));
  const map_t remaining = notification.extractRemainingPayload();
  EXPECT_EQ(blockOf(remaining), table);
  EXPECT_TRUE(notification.extractRemainingPayload().empty());
}

TEST_F(Disassembler, PayloadThatIsNoMapIsReported) {
  PulsarMessageDisassembler string = wrapped(text("a"));
  std::string error;
  stderrOf([&] { error = errorOf([&] { (void)string.extractRemainingPayload(); }); });
  EXPECT_EQ(error, "Incorrect type in get (you asked for map but it's actually string)");
}

// ---- the remains of a dropped notification

TEST_F(OnlyId, UsesTheNotificationsOwnBlocks) {
  for (const bool extracted : {false, true}) {
    map_t payload = mapOf("a", listOf(whole(1)), "id", text("4711"), "b", text("x"));
    const std::uint64_t id = blockOf(at(payload, "id"));
    const std::uint64_t key = keyBlockOf(payload, text("id"));
    const std::uint64_t table = blockOf(payload);
    PulsarMessageDisassembler notification = wrapped(std::move(payload));
    if (extracted) (void)notification.holdId(extractField(notification, DATA_T_id));
    standin_fail_allocations_from(1);
    data_t left = notification.reduceToId("4711");
    standin_fail_allocation(0);
    ASSERT_TRUE(same(left, mapOf("id", text("4711"))));
    auto& only_id = left.get<map_t>();
    EXPECT_EQ(blockOf(only_id), table);
    EXPECT_EQ(keyBlockOf(only_id, text("id")), key);
    EXPECT_EQ(blockOf(at(only_id, "id")), id);
    EXPECT_EQ(only_id.table()->deleted, 0);
  }
}

TEST_F(OnlyId, NothingIsLeftWithoutAnId) {
  PulsarMessageDisassembler notification = wrapped(mapOf("id", whole(4711)));
  EXPECT_TRUE(notification.reduceToId(nullptr).empty());
}

TEST_F(OnlyId, BorrowedIdBecomesOwned) {
  PulsarMessageDisassembler notification = wrapped(mapOf("id", borrowed("4711")));
  EXPECT_TRUE(same(notification.reduceToId("4711"), mapOf("id", text("4711"))));
}

TEST_F(OnlyId, NullTextStaysOne) {
  PulsarMessageDisassembler notification = wrapped(mapOf("id", nullText()));
  data_t left = notification.reduceToId("");
  const data_t& id = at(left.get<map_t>(), "id");
  EXPECT_EQ(id.type_tag(), VLT_TAG_STRING);
  EXPECT_EQ(id.get<const char*>(), nullptr);
}

TEST_F(OnlyId, TakenIdIsMadeAgain) {
  // The three allocations: the text of the id, its key and the table.
  for (const std::uint64_t n : {0U, 1U, 2U, 3U}) {
    PulsarMessageDisassembler notification = wrapped(map_t());
    standin_fail_allocation(n);
    const data_t left = notification.reduceToId("4711");
    EXPECT_EQ(standin_failed_allocations(), n == 0 ? 0U : 1U);
    standin_fail_allocation(0);
    EXPECT_EQ(left, n == 0 ? data_t(mapOf("id", text("4711"))) : data_t()) << n;
  }
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
