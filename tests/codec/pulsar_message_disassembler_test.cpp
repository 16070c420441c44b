// The wrapped notification: where the type segment starts, and how the payload is handed out.
#include "codec/pulsar_message_disassembler.hpp"

#include "tests/codec/notifications.hpp"
#include "tests/support/stderr_capture.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class Disassembler : public HostFixture {
 protected:
  static PulsarMessageDisassembler at_path(data_t&& path) {
    return PulsarMessageDisassembler(Message(map_of(), map_of("pulsarPath", std::move(path))));
  }
};

TEST_F(Disassembler, TypePointsIntoTheStoredPath) {
  const char* const path = "a/b/alarms/1";
  const PulsarMessageDisassembler notification = at_path(borrowed(path));
  EXPECT_EQ(notification.getStartCharOfMessageType(), path + 4);
  const char* const without_type = "a/alarms";
  const PulsarMessageDisassembler other = at_path(borrowed(without_type));
  EXPECT_EQ(other.getStartCharOfMessageType(), without_type + 8);
}

TEST_F(Disassembler, MissingPathIsReported) {
  const PulsarMessageDisassembler none;
  EXPECT_EQ(error_of([&] { (void)none.getStartCharOfMessageType(); }), "No Pulsar path found");
  const PulsarMessageDisassembler other(Message(map_of(), map_of("pulsarpath", text("a/b/c"))));
  EXPECT_EQ(error_of([&] { (void)other.getStartCharOfMessageType(); }), "No Pulsar path found");
}

TEST_F(Disassembler, RemainingPayloadIsMovedOutAndAnEmptyMapStays) {
  data_t payload = map_of("a", whole(1));
  const std::uint64_t table = block_of(payload);
  PulsarMessageDisassembler notification = wrapped(std::move(payload));
  const map_t remaining = notification.extractRemainingPayload();
  EXPECT_EQ(block_of(remaining), table);
  EXPECT_EQ(block_of(notification.getPayloadMap()), 0U);
  EXPECT_TRUE(notification.extractRemainingPayload().empty());
}

TEST_F(Disassembler, PayloadThatIsNoMapIsTheTypedGetsError) {
  PulsarMessageDisassembler string = wrapped(text("a"));
  std::string error;
  stderr_of([&] { error = error_of([&] { (void)string.extractRemainingPayload(); }); });
  EXPECT_EQ(error, "Incorrect type in get (you asked for map but it's actually string)");
  stderr_of([&] { error = error_of([&] { (void)string.getPayloadMap(); }); });
  EXPECT_EQ(error, "Incorrect type in get (you asked for map but it's actually string)");
  PulsarMessageDisassembler nothing;
  EXPECT_EQ(error_of([&] { (void)nothing.extractRemainingPayload(); }), "Get from empty");
}

TEST_F(Disassembler, MoveAssignmentTakesTheNotificationOver) {
  PulsarMessageDisassembler notification;
  notification = at_path(text("a/b/events/1"));
  EXPECT_STREQ(notification.getStartCharOfMessageType(), "events/1");
  EXPECT_TRUE(notification.getPayloadMap().empty());
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
