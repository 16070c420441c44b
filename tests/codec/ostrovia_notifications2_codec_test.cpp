// The codec: its configuration, the events it makes, and what it lets pass.
#include "codec/ostrovia_notifications2_codec.hpp"

#include <gmock/gmock.h>

#include "tests/codec/codec_fixture.hpp"
#include "tests/support/stderr_capture.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class Configuration : public CodecFixture {
 protected:
  // The channels of an alarm and a measurement, and the tenant in the alarm (empty: none).
  struct settings_t {
    std::string devices;
    std::string measurements;
    std::string tenant;
    bool operator==(const settings_t&) const = default;
  };
  static settings_t settings(const map_t& configuration) {
    const auto codec = codec_with(configuration);
    Message first = alarm();
    Message second = measurement();
    EXPECT_TRUE(codec->transformMessageTowardsHost(first));
    EXPECT_TRUE(codec->transformMessageTowardsHost(second));
    auto& fields = first.getPayload().get<map_t>();
    EXPECT_EQ(has(fields, "tenantId"), has(second.getPayload().get<map_t>(), "tenantId"));
    return {at(first.getMetadataMap(), "vlt.channel").get<const char*>(),
            at(second.getMetadataMap(), "vlt.channel").get<const char*>(),
            has(fields, "tenantId") ? at(fields, "tenantId").get<const char*>() : ""};
  }
  static std::string error(const map_t& configuration) {
    std::string result;
    stderr_of([&] { result = error_of([&] { codec_with(configuration); }); });
    return result;
  }
};

class Events : public CodecFixture {};

TEST_F(Configuration, EmptyTenantAloneGivesTheDefaults) {
  EXPECT_EQ(settings(map_of("tenantId", text(""))),
            (settings_t{"ostrovia.devices", "ostrovia.measurements", ""}));
}

TEST_F(Configuration, AllThreeSettingsAreUsed) {
  EXPECT_EQ(settings(map_of("tenantId", text("t1"), "towardsHostChannelPrefix", text("p."),
                            "measurementSplittingChannel", text("m"))),
            (settings_t{"p.ostrovia.devices", "m", "t1"}));
}

TEST_F(Configuration, BorrowedTextsAreRead) {
  EXPECT_EQ(settings(map_of("tenantId", borrowed("t1"), "towardsHostChannelPrefix", borrowed("p."),
                            "measurementSplittingChannel", borrowed("m"))),
            (settings_t{"p.ostrovia.devices", "m", "t1"}));
}

TEST_F(Configuration, MeasurementChannelThatIsNoTextFallsBackWithoutALine) {
  for (const bool empty : {true, false}) {
    settings_t actual;
    stderr_of([&] {
      actual = settings(
          map_of("tenantId", text(""), "measurementSplittingChannel", empty ? data_t() : whole(5)));
    });
    EXPECT_EQ(actual, (settings_t{"ostrovia.devices", "ostrovia.measurements", ""}));
    EXPECT_THAT(takeLog(), ::testing::IsEmpty());
  }
}

TEST_F(Configuration, EmptyMeasurementChannelIsUsedAsItIs) {
  EXPECT_EQ(settings(map_of("tenantId", text(""), "measurementSplittingChannel", text(""))),
            (settings_t{"ostrovia.devices", "", ""}));
}

TEST_F(Configuration, NullMeasurementChannelIsRefused) {
  EXPECT_EQ(error(map_of("tenantId", text(""), "measurementSplittingChannel", null_text())),
            "Cannot use a null char* as a data_t value (consider using an empty data_t() instead)");
}

TEST_F(Configuration, PrefixIsConvertedOrDefaulted) {
  const auto devices = [](data_t&& prefix) {
    return settings(map_of("tenantId", text(""), "towardsHostChannelPrefix", std::move(prefix)))
        .devices;
  };
  EXPECT_EQ(devices(whole(-5)), "-5ostrovia.devices");
  EXPECT_EQ(devices(truth(true)), "trueostrovia.devices");
  EXPECT_EQ(devices(real(0.5)), "0.5ostrovia.devices");
  EXPECT_EQ(devices(list_of()), "ostrovia.devices");
  EXPECT_EQ(devices(decimal(1)), "ostrovia.devices");
  EXPECT_EQ(devices(data_t()), "ostrovia.devices");
  EXPECT_EQ(devices(null_text()), "ostrovia.devices");
}

TEST_F(Configuration, NullTenantIsNoTenant) {
  EXPECT_EQ(settings(map_of("tenantId", null_text())).tenant, "");
}

TEST_F(Configuration, TenantIsRequired) {
  const std::string key = to_string(text("tenantId"));
  EXPECT_EQ(error(map_of()), "Key '" + key + "' not found in Notifications2Codec");
  EXPECT_EQ(error(map_of("tenantId", data_t())),
            "Key '" + key + "' has an empty value in Notifications2Codec");
  EXPECT_EQ(error(map_of("tenantId", whole(1))),
            "Incorrect type in get (you asked for string but it's actually integer)");
  EXPECT_EQ(error(map_of("tenantId", tagged(11))), "Get from empty");
}

TEST_F(Configuration, MeasurementChannelIsReadBeforeTheTenant) {
  EXPECT_EQ(error(map_of("measurementSplittingChannel", null_text())),
            "Cannot use a null char* as a data_t value (consider using an empty data_t() instead)");
}

TEST_F(Configuration, OtherKeysAreOfNoInterest) {
  EXPECT_EQ(settings(map_of("tenantId", text("t"), "more", list_of(whole(1)), whole(1), data_t())),
            (settings_t{"ostrovia.devices", "ostrovia.measurements", "t"}));
  EXPECT_THAT(takeLog(), ::testing::IsEmpty());
}

TEST_F(Events, EveryKindBecomesItsEventWithChannelAndTenant) {
  const auto codec = codec_with(map_of("tenantId", text("t1"), "towardsHostChannelPrefix",
                                       text("p."), "measurementSplittingChannel", text("m")));
  for (std::size_t i = 0; i < std::size(EXAMPLES); ++i) {
    Message message = example(i);
    ASSERT_TRUE(codec->transformMessageTowardsHost(message));
    map_t fields = EXAMPLES[i].fields();
    fields[text("tenantId")] = text("t1");
    EXPECT_TRUE(same(message.getPayload(), std::move(fields)));
    const bool split = std::string(EXAMPLES[i].kind) == "measurements";
    EXPECT_TRUE(
        same(message.getMetadataMap(), map_of("vlt.type", text(EXAMPLES[i].type), "vlt.channel",
                                              text(split ? "m" : "p.ostrovia.devices"))));
  }
}

TEST_F(Events, SegmentThatMerelyBeginsWithMeasurementsGoesToTheirChannel) {
  const auto codec = CodecFixture::codec();
  Message message = notification("a/b/measurementsX/1", measurement_example());
  codec->transformMessageTowardsHost(message);
  EXPECT_TRUE(
      same(message.getMetadataMap(), map_of("vlt.type", text("com.tivra.ostrovia.Measurement"),
                                            "vlt.channel", text("ostrovia.measurements"))));
}

TEST_F(Events, TenantReplacesTheNotificationsOwn) {
  for (const bool set : {true, false}) {
    const auto codec = codec_with(map_of("tenantId", text(set ? "t1" : "")));
    map_t payload = event_example();
    payload[text("tenantId")] = list_of(whole(1));
    Message message = notification("a/b/events", std::move(payload));
    codec->transformMessageTowardsHost(message);
    EXPECT_TRUE(same(at(message.getPayload().get<map_t>(), "tenantId"),
                     set ? text("t1") : list_of(whole(1))));
  }
}

TEST_F(Events, MetadataOfTheTransportIsLeftBehind) {
  Message message = alarm();
  message.getMetadataMap()[text("vlt.channel")] = text("from transport");
  message.getMetadataMap()[text("header")] = whole(1);
  CodecFixture::codec()->transformMessageTowardsHost(message);
  EXPECT_TRUE(same(message.getMetadataMap(), map_of("vlt.type", text("com.tivra.ostrovia.Alarm"),
                                                    "vlt.channel", text("ostrovia.devices"))));
}

TEST_F(Events, MessageWithoutAPathPassesUntouchedAndUntraced) {
  standin_set_log_level(CATEGORY, 6);
  const auto codec = CodecFixture::codec();
  for (int kind = 0; kind < 4; ++kind) {
    data_t payload = kind == 0   ? data_t(map_of("a", whole(1)))
                     : kind == 1 ? text("x")
                     : kind == 2 ? list_of(whole(1))
                                 : data_t();
    Message message(std::move(payload), map_of("pulsarpath", text("a/b/alarms")));
    const std::uint64_t block = block_of(message.getPayload());
    const std::uint64_t table = block_of(message.getMetadataMap());
    EXPECT_TRUE(codec->transformMessageTowardsHost(message));
    EXPECT_EQ(block_of(message.getPayload()), block);
    EXPECT_EQ(block_of(message.getMetadataMap()), table);
  }
  EXPECT_THAT(takeLog(), ::testing::IsEmpty());
}

TEST_F(Events, PathUnderABorrowedKeyIsNoPath) {
  Message message(alarm_example(), map_of(borrowed("pulsarPath"), text("a/b/alarms")));
  EXPECT_TRUE(CodecFixture::codec()->transformMessageTowardsHost(message));
  EXPECT_TRUE(same(message.getPayload(), alarm_example()));
}

TEST_F(Events, NothingChangesTowardsTheTransport) {
  const auto codec = CodecFixture::codec();
  Message message = alarm();
  const std::uint64_t block = block_of(message.getPayload());
  EXPECT_TRUE(codec->transformMessageTowardsTransport(message));
  EXPECT_EQ(block_of(message.getPayload()), block);
  EXPECT_TRUE(same(message.getPayload(), alarm_example()));
  EXPECT_TRUE(same(message.getMetadataMap(), map_of("pulsarPath", text("a/b/alarms/1"))));
}

TEST_F(Events, TraceShowsTheNotificationBeforeItIsConverted) {
  standin_set_log_level(CATEGORY, 6);
  const auto codec = CodecFixture::codec();
  Message message = alarm();
  const std::string before = to_string(message, true);
  standin_reset_calls();
  codec->transformMessageTowardsHost(message);
  EXPECT_EQ(standin_calls(STANDIN_DATA_TO_STRING), 2); // payload and metadata, once each
  EXPECT_EQ(takeLog(), std::vector{line(6, "Processing message: " + before)});
}

TEST_F(Events, NothingIsRenderedBelowTheLevelOfTheTrace) {
  standin_set_log_level(CATEGORY, 5);
  const auto codec = CodecFixture::codec();
  Message message = alarm();
  standin_reset_calls();
  codec->transformMessageTowardsHost(message);
  EXPECT_EQ(standin_calls(STANDIN_DATA_TO_STRING), 0);
  EXPECT_EQ(standin_calls(STANDIN_LOG_AT), 0);
}

TEST_F(Events, BatchAsksForNoLevelAndSetsNoStatus) {
  const auto codec = CodecFixture::codec();
  Message batch[] = {alarm(), measurement(), notification("a/b/none", map_of())};
  standin_reset_calls();
  codec->sendBatchTowardsHost(std::begin(batch), std::end(batch));
  EXPECT_EQ(standin_calls(STANDIN_GET_LOG_LEVEL), 0);
  EXPECT_EQ(standin_calls(STANDIN_SET_USER_STATUS_MAP), 0);
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
