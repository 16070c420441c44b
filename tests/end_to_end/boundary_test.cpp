// The effects of an exception that crosses the C interface of the built library.
// ostrovia-check-plugin and tests/misuse/ check mistakes and freedoms of a host.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <exception>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

using ::testing::StartsWith;
using BoundaryTest = EndToEnd;

// A C++ library of the plug-in's own would count its caught exceptions apart, and leave the host's
// count of exceptions under way one too high.
TEST_F(BoundaryTest, LinksExceptionEndsForTheHostToo) {
  LoadedCodec codec(library_, mapOf("tenantId", text("")));
  library_.setNextTowardsHost(codec.plugin(), nullptr,
                              [](void*, vlt_underlying_message_t*, vlt_underlying_message_t*) {
                                throw std::runtime_error("jam");
                              });
  Message message = notification(EVENT_PATH, eventPayload());
  EXPECT_EQ(codec.sendTowardsHost(message), 1);
  EXPECT_EQ(std::uncaught_exceptions(), 0);
  takeLog();
}

// A payload with each field that any kind knows, the later ones of an event first.
map_t everyField(const char* status) {
  map_t payload = mapOf("o6a_More", whole(1));
  for (const char* const key :
       {"lastUpdated", "firstOccurrenceTime", "creationTime", "additionParents", "assetParents",
        "deviceParents", "childAdditions", "childAssets", "childDevices", "type", "time", "text",
        "name", "deviceId", "id"}) {
    payload[text(key)] = text("2023-04-05T06:07:08.000Z");
  }
  payload[text("o6a_Position")] = mapOf("lat", real(1));
  payload[text("o6a_SupportedMeasurements")] = listOf();
  payload[text("o6a_SupportedOperations")] = listOf();
  payload[text("status")] = text(status);
  payload[text("source")] = mapOf("id", text("7"));
  payload[text("severity")] = text("MINOR");
  payload[text("count")] = whole(1);
  return payload;
}

// Slots follow from the order of insertion where keys collide, and a host walks over slots. So all keys
// collide here, at slot 0 of each capacity that these events have.
TEST(FieldOrder, EventsGetTheirFieldsInOneOrder) {
  standin_set_string_hash([](const char*, std::uint64_t) -> std::uint64_t { return 16 * 7; });
  {
    const PluginLibrary library(VLT_PLUGIN_PATH);
    LoadedCodec codec(library, mapOf("tenantId", text("")));
    const auto fields_of = [&codec](const char* path, const char* status) {
      const Message event = codec.converted(notification(path, everyField(status)));
      std::string fields;
      for (const auto& [field, value] : event.getPayload().get<map_t>()) {
        fields += std::string(field.get<const char*>()) + " ";
      }
      return fields;
    };
    const char* const dates = "creationTime firstOccurrenceTime lastUpdated o6a_More ";
    EXPECT_THAT(fields_of("a/b/alarms/1", "ACTIVE"),
                StartsWith(std::string("id count severity source status text time type ") + dates));
    EXPECT_THAT(fields_of(EVENT_PATH, ""),
                StartsWith("id source text firstOccurrenceTime type creationTime lastUpdated "));
    EXPECT_THAT(fields_of(MEASUREMENT_PATH, ""),
                StartsWith("id source time type creationTime lastUpdated o6a_More "));
    EXPECT_THAT(fields_of("a/b/managedobjects/1", ""),
                StartsWith("id source supportedOperations supportedMeasurements position "
                           "childDeviceIds childAssetIds childAdditionIds deviceParentIds "
                           "assetParentIds additionParentIds creationTime lastUpdated o6a_More "));
    EXPECT_THAT(fields_of("a/b/operations/1", "PENDING"),
                StartsWith(std::string("id source status ") + dates));
  }
  standin_set_string_hash(nullptr);
}

} // namespace
} // namespace com::velanto::connectivity::test
