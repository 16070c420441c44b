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

// Slots follow from the order of insertion where keys collide, and a host walks over slots. So all keys
// collide here, at slot 0 of each capacity that these events have.
TEST(FieldOrder, EventsGetTheirFieldsInOneOrder) {
  standin_set_string_hash([](const char*, std::uint64_t) -> std::uint64_t { return 16 * 7; });
  {
    const PluginLibrary library(VLT_PLUGIN_PATH);
    LoadedCodec codec(library, mapOf("tenantId", text("")));
    const auto fields_of = [&codec](const char* path, const char* key, const char* word) {
      map_t payload = eventPayload();
      for (const char* const id : {"deviceId", "name"}) payload[text(id)] = text("7");
      payload[text("count")] = whole(1);
      payload[text("severity")] = text("MINOR");
      payload[text(key)] = text(word);
      const Message event = codec.converted(notification(path, std::move(payload)));
      std::string fields;
      for (const auto& [field, value] : event.getPayload().get<map_t>()) {
        fields += std::string(field.get<const char*>()) + " ";
      }
      return fields;
    };
    EXPECT_THAT(fields_of("a/b/alarms/1", "status", "ACTIVE"),
                StartsWith("id count severity source status text time type "));
    EXPECT_THAT(fields_of(EVENT_PATH, "o6a_More", "x"),
                StartsWith("id source text firstOccurrenceTime type "));
    EXPECT_THAT(fields_of(MEASUREMENT_PATH, "o6a_More", "x"), StartsWith("id source time type "));
    EXPECT_THAT(fields_of("a/b/managedobjects/1", "o6a_More", "x"), StartsWith("id source "));
    EXPECT_THAT(fields_of("a/b/operations/1", "status", "PENDING"),
                StartsWith("id source status "));
  }
  standin_set_string_hash(nullptr);
}

} // namespace
} // namespace com::velanto::connectivity::test
