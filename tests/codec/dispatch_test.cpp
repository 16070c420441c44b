// Which conversion a type segment leads to.
#include "codec/dispatch.hpp"

#include "tests/codec/examples.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class Dispatch : public HostFixture {
 protected:
  static Message dispatched(const std::string& path, map_t&& payload) {
    PulsarMessageDisassembler notification(
        connectivity::test::notification(path.c_str(), std::move(payload)));
    return TivraMessageBuilder::getResult(convertPulsarToTivraMessage(notification));
  }
  static std::string error_at(data_t&& path) {
    PulsarMessageDisassembler notification(
        Message(map_of(), map_of("pulsarPath", std::move(path))));
    return error_of([&] { (void)convertPulsarToTivraMessage(notification); });
  }
};

TEST_F(Dispatch, EachKindReachesItsConversion) {
  for (const example_t& example : EXAMPLES) {
    const std::string kind = example.kind;
    for (const std::string& path : {"tenantA/sub1/" + kind + "/4711", "tenantA/sub1/" + kind,
                                    "//" + kind + "/1", "a/b/" + kind + "/c/d"}) {
      const Message message = dispatched(path, example.payload());
      EXPECT_TRUE(same(message.getPayload(), example.fields())) << path;
      EXPECT_TRUE(same(message.getMetadataMap(), map_of("vlt.type", text(example.type)))) << path;
    }
  }
}

TEST_F(Dispatch, SegmentThatMerelyBeginsWithAKindIsOfThatKind) {
  for (const example_t& example : EXAMPLES) {
    for (const char* const more : {"X", "foo/1", "events", " "}) {
      const std::string path = std::string("a/b/") + example.kind + more;
      const Message message = dispatched(path, example.payload());
      EXPECT_TRUE(same(message.getMetadataMap(), map_of("vlt.type", text(example.type)))) << path;
    }
  }
}

TEST_F(Dispatch, SegmentShorterThanItsKindIsUnknown) {
  for (const example_t& example : EXAMPLES) {
    std::string segment = example.kind;
    segment.pop_back();
    const std::string expected = "Unrecognised Pulsar message type: '" + segment + "'";
    EXPECT_EQ(error_at(text(("a/b/" + segment).c_str())), expected);
    EXPECT_EQ(error_at(text(("a/b/" + segment + "/s").c_str())), expected);
  }
}

TEST_F(Dispatch, UnknownSegmentIsNamedUpToTheNextSlash) {
  EXPECT_EQ(error_at(text("tenantA/sub1/inventory/7")),
            "Unrecognised Pulsar message type: 'inventory'");
  EXPECT_EQ(error_at(text("tenantA/sub1/inventory")),
            "Unrecognised Pulsar message type: 'inventory'");
  EXPECT_EQ(error_at(text("a/b/Alarms/1")), "Unrecognised Pulsar message type: 'Alarms'");
  EXPECT_EQ(error_at(text("a/b/ alarms")), "Unrecognised Pulsar message type: ' alarms'");
  EXPECT_EQ(error_at(text("a/b/xalarms")), "Unrecognised Pulsar message type: 'xalarms'");
  EXPECT_EQ(error_at(text("a/b/%s%n")), "Unrecognised Pulsar message type: '%s%n'");
}

TEST_F(Dispatch, EmptySegmentIsUnknown) {
  const std::string expected = "Unrecognised Pulsar message type: ''";
  EXPECT_EQ(error_at(text("alarms")), expected);
  EXPECT_EQ(error_at(text("a/alarms")), expected);
  EXPECT_EQ(error_at(text("")), expected);
  EXPECT_EQ(error_at(text("a/b/")), expected);
  EXPECT_EQ(error_at(text("a/b//alarms")), expected);
  EXPECT_EQ(error_at(null_text()), expected);
}

TEST_F(Dispatch, MissingPathIsReported) {
  PulsarMessageDisassembler notification = wrapped(event_example());
  EXPECT_EQ(error_of([&] { (void)convertPulsarToTivraMessage(notification); }),
            "No Pulsar path found");
}

TEST_F(Dispatch, WhatTheConversionThrowsPassesThrough) {
  EXPECT_EQ(error_at(text("a/b/managedobjects/1")),
            "Required key 'id' missing from message payload");
  EXPECT_EQ(error_at(text("a/b/events/1")), "Required key 'source' missing from message payload");
}

TEST_F(Dispatch, KindIsComparedOverItsOwnLength) {
  EXPECT_TRUE(isOfKind("measurements", "measurements"));
  EXPECT_TRUE(isOfKind("measurementsX/1", "measurements"));
  EXPECT_FALSE(isOfKind("measurement", "measurements"));
  EXPECT_FALSE(isOfKind("", "measurements"));
  EXPECT_FALSE(isOfKind("Measurements", "measurements"));
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
