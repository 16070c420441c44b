// What each configuration makes of the channels and of the tenant.
#include <gtest/gtest.h>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

const char* const NO_TENANT = nullptr;

class ConfigurationTest : public EndToEnd {
 protected:
  // The channels and the tenant that a codec with these settings gives its events.
  void expectOutcome(const data_t& settings, const char* measurements, const char* devices,
                     const char* tenant, const char* row) {
    LoadedCodec codec(library_, settings);
    Message measurement = codec.converted(notification(MEASUREMENT_PATH, measurementPayload()));
    Message event = codec.converted(notification(EVENT_PATH, eventPayload()));
    EXPECT_EQ(at(measurement.getMetadataMap(), "vlt.channel"), text(measurements)) << row;
    EXPECT_EQ(at(event.getMetadataMap(), "vlt.channel"), text(devices)) << row;
    for (Message* const message : {&measurement, &event}) {
      auto& fields = message->getPayload().get<map_t>();
      EXPECT_EQ(has(fields, "tenantId"), tenant != NO_TENANT) << row;
      if (tenant == NO_TENANT) continue;
      EXPECT_EQ(at(fields, "tenantId"), text(tenant)) << row;
    }
    EXPECT_EQ(takeLog(), lines_t{}) << row;
  }
};

TEST_F(ConfigurationTest, EmptyTenantAloneGivesTheDefaults) {
  expectOutcome(map_of("tenantId", text("")), "ostrovia.measurements", "ostrovia.devices",
                NO_TENANT, "defaults");
}

TEST_F(ConfigurationTest, AllThreeKeysAreUsedAndThePrefixNotForMeasurements) {
  expectOutcome(map_of("tenantId", text("t1"), "towardsHostChannelPrefix", text("p."),
                       "measurementSplittingChannel", text("m")),
                "m", "p.ostrovia.devices", "t1", "all keys");
}

TEST_F(ConfigurationTest, OtherKeysAreNeitherReadNorRefused) {
  expectOutcome(map_of("tenantId", text(""), "tenantID", text("x"), whole(1), list_of(),
                       "measurements", custom()),
                "ostrovia.measurements", "ostrovia.devices", NO_TENANT, "other keys");
}

TEST_F(ConfigurationTest, BorrowedTextsAndKeysAreAsGoodAsOwned) {
  expectOutcome(map_of(borrowed("tenantId"), borrowed("t1"), borrowed("towardsHostChannelPrefix"),
                       borrowed("p."), borrowed("measurementSplittingChannel"), borrowed("m")),
                "m", "p.ostrovia.devices", "t1", "borrowed");
}

TEST_F(ConfigurationTest, NullTextsOfTenantAndPrefixReadAsEmpty) {
  expectOutcome(map_of("tenantId", null_text(), "towardsHostChannelPrefix", null_text()),
                "ostrovia.measurements", "ostrovia.devices", NO_TENANT, "null texts");
  expectOutcome(map_of("tenantId", tagged(VLT_TAG_BORROWED_STRING), "towardsHostChannelPrefix",
                       tagged(VLT_TAG_BORROWED_STRING)),
                "ostrovia.measurements", "ostrovia.devices", NO_TENANT, "borrowed null texts");
}

struct setting_t {
  const char* name;
  data_t value;
  const char* expected;
  const char* stderr_line; // written while the codec is made
};

TEST_F(ConfigurationTest, MeasurementChannelOfAnotherKindFallsBackUnlogged) {
  const std::string line = wrong_kind_line<const char*>();
  const char* const fallback = "ostrovia.measurements";
  setting_t rows[] = {{"text", text("m"), "m", ""},
                      {"empty text", text(""), "", ""},
                      {"no value at all", data_t(), fallback, ""},
                      {"integer", whole(1), fallback, line.c_str()},
                      {"boolean", truth(true), fallback, line.c_str()},
                      {"double", real(0.5), fallback, line.c_str()},
                      {"decimal", decimal(1), fallback, line.c_str()},
                      {"list", list_of(), fallback, line.c_str()},
                      {"map", map_t(), fallback, line.c_str()},
                      {"buffer", bytes("b"), fallback, line.c_str()},
                      {"custom", custom(), fallback, line.c_str()},
                      {"unknown kind", tagged(11), fallback, ""}};
  for (setting_t& row : rows) {
    const data_t settings = map_of("tenantId", text(""), "measurementSplittingChannel",
                                   std::move(row.value), "towardsHostChannelPrefix", text("p."));
    EXPECT_EQ(stderr_of([&] {
                expectOutcome(settings, row.expected, "p.ostrovia.devices", NO_TENANT, row.name);
              }),
              row.stderr_line)
        << row.name;
  }
}

TEST_F(ConfigurationTest, PrefixIsConvertedToTextOrLeftOut) {
  setting_t rows[] = {{"text", text("p."), "p.ostrovia.devices", ""},
                      {"integer", whole(-5), "-5ostrovia.devices", ""},
                      {"boolean", truth(true), "trueostrovia.devices", ""},
                      {"double", real(0.5), "0.5ostrovia.devices", ""},
                      {"no value at all", data_t(), "ostrovia.devices", ""},
                      {"decimal", decimal(1), "ostrovia.devices", ""},
                      {"list", list_of(text("p.")), "ostrovia.devices", ""},
                      {"map", map_t(), "ostrovia.devices", ""},
                      {"buffer", bytes("p."), "ostrovia.devices", ""},
                      {"custom", custom(), "ostrovia.devices", ""},
                      {"unknown kind", tagged(11), "ostrovia.devices", ""}};
  for (setting_t& row : rows) {
    const data_t settings =
        map_of("tenantId", text("t"), "towardsHostChannelPrefix", std::move(row.value));
    EXPECT_EQ(stderr_of([&] {
                expectOutcome(settings, "ostrovia.measurements", row.expected, "t", row.name);
              }),
              row.stderr_line)
        << row.name;
  }
}

// Every byte of a table: header, slots, and with them all values that lie in place.
std::string bytesOf(const map_t& map) {
  const vlt_underlying_map_table_t* const table = map.table();
  const auto slots = static_cast<std::size_t>(table->capacity);
  return {reinterpret_cast<const char*>(table),
          sizeof *table + slots * sizeof(vlt_underlying_map_table_entry_t)};
}

TEST_F(ConfigurationTest, IsLeftUnchanged) {
  const data_t settings =
      map_of("tenantId", text("t1"), "towardsHostChannelPrefix", borrowed("p."), "other", whole(1));
  const std::string before = bytesOf(settings.get<map_t>());
  const LoadedCodec codec(library_, settings);
  EXPECT_EQ(bytesOf(settings.get<map_t>()), before);
  EXPECT_EQ(settings, data_t(map_of("tenantId", text("t1"), "towardsHostChannelPrefix",
                                    borrowed("p."), "other", whole(1))));
}

TEST_F(ConfigurationTest, MayVanishAfterCreation) {
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
