// What a host may do differently at the C interface of the built library; what it can do wrong is
// in tests/misuse/.
#include <gtest/gtest.h>

#include <exception>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

class BoundaryTest : public EndToEnd {
 protected:
  // The result of a batch with one event, whose next link throws.
  int sendToLinkThatThrows(LoadedCodec& codec) {
    library_.setNextTowardsHost(codec.plugin(), nullptr,
                                [](void*, vlt_underlying_message_t*, vlt_underlying_message_t*) {
                                  throw std::runtime_error("jam");
                                });
    Message message = notification(EVENT_PATH, eventPayload());
    return codec.sendTowardsHost(message);
  }
};

TEST_F(BoundaryTest, NullNamesReadAsEmptyOnes) {
  LoadedCodec codec(library_, map_of("tenantId", text("")), nullptr, nullptr);
  Message message = notification(UNKNOWN_PATH, map_t());
  EXPECT_EQ(codec.sendTowardsHost(message), 0);
  EXPECT_EQ(takeLog(), (lines_t{{"connectivity..", 3,
                                 "<connectivity..> Error when transforming message towards host: "
                                 "Unrecognised Pulsar message type: 'inventory'"}}));
}

TEST_F(BoundaryTest, HandlesOfTheHostAreNotDereferenced) {
  const data_t settings = map_of("tenantId", text(""));
  void* const plugin =
      library_.create("codec", "chain", settings.underlying(), unreadable(1), unreadable(2));
  ASSERT_NE(plugin, nullptr);
  Message message = notification(EVENT_PATH, eventPayload());
  EXPECT_EQ(library_.sendBatchTowardsHost(plugin, &message, &message + 1), 0);
  EXPECT_EQ(library_.destroy(plugin), 0);
}

TEST_F(BoundaryTest, ThrowingNextLinkIsLoggedAndTheCodecStaysUsable) {
  LoadedCodec codec(library_, map_of("tenantId", text("")));
  EXPECT_EQ(sendToLinkThatThrows(codec), 1);
  EXPECT_EQ(takeLog(), (lines_t{line(3, "Exception from sendBatchTowardsHost: jam")}));
  library_.setNextTowardsHost(codec.plugin(), &codec.host, Received::take);
  static_cast<void>(codec.converted(notification(EVENT_PATH, eventPayload())));
}

TEST_F(BoundaryTest, NextLinkMayThrowWhateverItLikes) {
  LoadedCodec codec(library_, map_of("tenantId", text("")));
  library_.setNextTowardsHost(
      codec.plugin(), nullptr,
      [](void*, vlt_underlying_message_t*, vlt_underlying_message_t*) { throw 42; });
  Message message = notification(EVENT_PATH, eventPayload());
  EXPECT_EQ(codec.sendTowardsHost(message), 1);
  EXPECT_EQ(takeLog(), (lines_t{line(3, "Unknown exception from sendBatchTowardsHost")}));
}

// A C++ library of the plug-in's own would count apart what it catches, and leave the host's count
// of exceptions under way one too high.
TEST_F(BoundaryTest, ExceptionOfANextLinkIsOverForTheHostToo) {
  LoadedCodec codec(library_, map_of("tenantId", text("")));
  EXPECT_EQ(sendToLinkThatThrows(codec), 1);
  EXPECT_EQ(std::uncaught_exceptions(), 0);
  takeLog();
}

TEST_F(BoundaryTest, ConfigurationMayVanishAfterCreation) {
  std::string name = "codec";
  std::string prefix = "p.";
  auto settings = std::make_unique<data_t>(
      map_of("tenantId", text("t1"), "towardsHostChannelPrefix", borrowed(prefix.c_str())));
  LoadedCodec codec(library_, *settings, name.c_str());
  settings.reset();
  prefix = "--";
  name = "-----";
  Message event = codec.converted(notification(EVENT_PATH, eventPayload()));
  EXPECT_EQ(at(event.getMetadataMap(), "vlt.channel"), text("p.ostrovia.devices"));
  EXPECT_EQ(at(event.getPayload().get<map_t>(), "tenantId"), text("t1"));
  Message failing = notification(UNKNOWN_PATH, map_t());
  codec.sendTowardsHost(failing);
  EXPECT_EQ(takeLog(), (lines_t{dropped(": Unrecognised Pulsar message type: 'inventory'")}));
}

} // namespace
} // namespace com::velanto::connectivity::test
