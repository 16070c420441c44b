// Managed objects: the worked example, the order of the checks, and who ends up under which name.
#include "codec/conversions/managed_object.hpp"

#include "tests/codec/examples.hpp"
#include "tests/codec/faults.hpp"
#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class ManagedObjectConversion : public HostFixture {};
class ManagedObjectBuilding : public HostFixture {};

map_t bare() { return map_of("id", text("7"), "name", text("Pump"), "type", text("o6a_Device")); }

// What the event of a bare object with one more entry has beyond id, source and measurements.
map_t moreFields(const char* key, data_t&& value) {
  map_t payload = bare();
  payload[text(key)] = std::move(value);
  map_t fields = fields_of(convertManagedObject, std::move(payload));
  EXPECT_TRUE(same(at(fields, "id"), text("7")));
  EXPECT_TRUE(same(at(fields, "source"), text("Pump")));
  EXPECT_TRUE(same(at(fields, "measurements"), map_of()));
  for (const char* const common : {"id", "source", "measurements"}) remove(fields, common);
  return fields;
}

TEST_F(ManagedObjectConversion, WorkedExampleBecomesTheWholeEvent) {
  const Message message = converted(convertManagedObject, managed_object_example());
  EXPECT_TRUE(same(message.getPayload(), managed_object_fields()));
  EXPECT_TRUE(
      same(message.getMetadataMap(), map_of("vlt.type", text("com.tivra.ostrovia.ManagedObject"))));
}

TEST_F(ManagedObjectConversion, NameBecomesTheSourceAndTheTypeIsDropped) {
  EXPECT_TRUE(same(fields_of(convertManagedObject, bare()),
                   map_of("id", text("7"), "source", text("Pump"), "measurements", map_of())));
  EXPECT_TRUE(same(fields_of(convertManagedObject, map_of("id", text("7"), "name", text("Pump"))),
                   map_of("id", text("7"), "source", text("Pump"), "measurements", map_of())));
}

TEST_F(ManagedObjectConversion, FirstFaultInTheOrderOfTheStepsIsReported) {
  std::vector<fault_t> faults;
  faults.push_back({"id", {}, "Required key 'id' missing from message payload"});
  faults.push_back({"name", {}, "Required key 'name' missing from message payload"});
  faults.push_back({"id", whole(1), "Value for key 'id' is not a string."});
  faults.push_back({"name", whole(1), "Value for key 'source' is not a string."});
  faults.push_back({"type", whole(1), "Value for key 'type' is not a string."});
  expectReportedInOrder(convertManagedObject, managed_object_example, faults);
}

TEST_F(ManagedObjectConversion, EmptyTypeThatIsPresentIsNoString) {
  map_t payload = bare();
  payload[text("type")] = data_t();
  EXPECT_EQ(conversion_error(convertManagedObject, std::move(payload)),
            "Value for key 'type' is not a string.");
}

// The fields put into a fresh map one after the other, in the order of the steps.
map_t singleAssignments(const map_t& payload) {
  map_t fields;
  fields[text("id")] = text("7");
  fields[text("source")] = text("Pump");
  for (const auto& [key, value] : payload) {
    if (key == text("id") || key == text("name") || key == text("type")) continue;
    fields[data_t(key)] = value;
  }
  fields.insert(text("measurements"), map_t());
  return fields;
}

TEST_F(ManagedObjectConversion, ManyFieldsLieAsSingleAssignmentsLeaveThem) {
  for (int count = 0; count <= 80; ++count) {
    SCOPED_TRACE(std::to_string(count) + " further fields");
    map_t payload = bare();
    for (int i = 0; i < count; ++i) {
      payload[text(("site_Field" + std::to_string(i * 37)).c_str())] = whole(i);
    }
    if (count % 5 == 4) payload[text("measurements")] = text("mine");
    const map_t expected = singleAssignments(payload);
    expect_same_slots(fields_of(convertManagedObject, std::move(payload)), expected);
  }
}

TEST_F(ManagedObjectConversion, SupportedListsAreStoredWhateverTheyHold) {
  const auto expectCarried = [](const char* from, const char* to) {
    EXPECT_TRUE(same(moreFields(from, list_of(text("a"), borrowed("b"))),
                     map_of(to, list_of(text("a"), borrowed("b")))));
    EXPECT_TRUE(same(moreFields(from, list_of(text("a"), whole(1), text("c"))),
                     map_of(to, list_of(text("a"), whole(1), text("c")))));
    EXPECT_TRUE(same(moreFields(from, list_of()), map_of(to, list_of())));
    EXPECT_TRUE(same(moreFields(from, list_t()), map_of(to, list_of())));
    EXPECT_TRUE(same(moreFields(from, text("none")), map_of(to, text("none"))));
    EXPECT_TRUE(same(moreFields(from, map_of("a", whole(1))), map_of(to, map_of("a", whole(1)))));
    EXPECT_TRUE(same(moreFields(from, data_t()), map_of(to, data_t())));
  };
  expectCarried("o6a_SupportedOperations", "supportedOperations");
  expectCarried("o6a_SupportedMeasurements", "supportedMeasurements");
}

TEST_F(ManagedObjectConversion, PositionThatIsNoMapVanishes) {
  EXPECT_TRUE(same(moreFields("o6a_Position", text("here")), map_of()));
  EXPECT_TRUE(same(moreFields("o6a_Position", list_of(real(1))), map_of()));
  EXPECT_TRUE(same(moreFields("o6a_Position", data_t()), map_of()));
}

TEST_F(ManagedObjectConversion, NumericComponentsMakeThePosition) {
  EXPECT_TRUE(
      same(moreFields("o6a_Position", map_of("lat", real(51.2), "lng", whole(7), "alt", text("100"),
                                             "acc", decimal(3), "age", borrowed(" 1e3s"))),
           map_of("position", map_of("lat", real(51.2), "lng", whole(7), "alt", text("100"), "acc",
                                     decimal(3), "age", borrowed(" 1e3s")))));
}

TEST_F(ManagedObjectConversion, OtherComponentsBecomeFieldsOfTheirOwn) {
  EXPECT_TRUE(same(moreFields("o6a_Position", map_of("lat", real(1), "how", map_of("a", whole(1)),
                                                     "x", text("0x10"), "n", null_text())),
                   map_of("position", map_of("lat", real(1)), "how", map_of("a", whole(1)), "x",
                          text("0x10"), "n", null_text())));
  EXPECT_TRUE(
      same(moreFields("o6a_Position", map_of("how", text("gps"))), map_of("how", text("gps"))));
  EXPECT_TRUE(same(moreFields("o6a_Position", map_of()), map_of()));
}

TEST_F(ManagedObjectConversion, StrayComponentsReplaceFieldsOfTheirNames) {
  map_t payload = bare();
  payload[text("o6a_SupportedOperations")] = list_of(text("a"));
  payload[text("o6a_Position")] =
      map_of("lat", real(1), "id", truth(true), "source", text("sat"), "position", text("here"),
             "supportedOperations", text("none"), "measurements", text("mine"));
  EXPECT_TRUE(same(fields_of(convertManagedObject, std::move(payload)),
                   map_of("id", truth(true), "source", text("sat"), "position", text("here"),
                          "supportedOperations", text("none"), "measurements", text("mine"))));
}

TEST_F(ManagedObjectConversion, ReferencesAreCarriedOverWholeUnderTheirNewNames) {
  const char* const names[][2] = {
      {"childDevices", "childDeviceIds"},     {"childAssets", "childAssetIds"},
      {"childAdditions", "childAdditionIds"}, {"deviceParents", "deviceParentIds"},
      {"assetParents", "assetParentIds"},     {"additionParents", "additionParentIds"}};
  for (const auto& [from, to] : names) {
    const auto references = [] {
      return map_of("self", text("u"), "references", list_of(map_of("id", text("8"))));
    };
    EXPECT_TRUE(same(moreFields(from, references()), map_of(to, references())));
    EXPECT_TRUE(same(moreFields(from, whole(1)), map_of(to, whole(1))));
    EXPECT_TRUE(same(moreFields(from, data_t()), map_of(to, data_t())));
  }
}

TEST_F(ManagedObjectConversion, OnlyCreationAndUpdateAreDates) {
  for (const char* const key : {"creationTime", "lastUpdated"}) {
    EXPECT_TRUE(same(moreFields(key, text(EXAMPLE_TIME)), map_of(key, real(EXAMPLE_SECONDS))));
    EXPECT_TRUE(same(moreFields(key, text("garbage")), map_of(key, text("garbage"))));
    EXPECT_TRUE(same(moreFields(key, whole(1)), map_of(key, whole(1))));
  }
  for (const char* const key : {"firstOccurrenceTime", "time"}) {
    EXPECT_TRUE(same(moreFields(key, text(EXAMPLE_TIME)), map_of(key, text(EXAMPLE_TIME))));
  }
}

TEST_F(ManagedObjectConversion, RemainingFieldsReplaceThoseMadeBefore) {
  map_t payload = managed_object_example();
  const char* const collisions[] = {"source",           "position",      "origin",
                                    "childDeviceIds",   "childAssetIds", "supportedOperations",
                                    "childAdditionIds", "measurements",  "supportedMeasurements"};
  map_t expected = managed_object_fields();
  for (const char* const key : collisions) {
    payload[text(key)] = text(key);
    expected[text(key)] = text(key);
  }
  EXPECT_TRUE(same(fields_of(convertManagedObject, std::move(payload)), expected));
}

TEST_F(ManagedObjectConversion, BlocksAreTheNotificationsOwn) {
  map_t payload = managed_object_example();
  payload[text("o6a_SupportedMeasurements")] = list_of(whole(1), text("a")); // handed back
  auto& position = at(payload, "o6a_Position").get<map_t>();
  const std::uint64_t name = block_of(at(payload, "name"));
  const std::uint64_t operations = block_of(at(payload, "o6a_SupportedOperations"));
  const std::uint64_t measurements = block_of(at(payload, "o6a_SupportedMeasurements"));
  const std::uint64_t alt = block_of(at(position, "alt"));
  const std::uint64_t alt_key = key_block_of(position, text("alt"));
  const std::uint64_t origin = block_of(at(position, "origin"));
  const std::uint64_t origin_key = key_block_of(position, text("origin"));
  const std::uint64_t children = block_of(at(payload, "childDevices"));
  map_t fields = fields_of(convertManagedObject, std::move(payload));
  auto& made = at(fields, "position").get<map_t>();
  EXPECT_EQ(block_of(at(fields, "source")), name);
  EXPECT_EQ(block_of(at(fields, "supportedOperations")), operations);
  EXPECT_EQ(block_of(at(fields, "supportedMeasurements")), measurements);
  EXPECT_EQ(block_of(at(made, "alt")), alt);
  EXPECT_EQ(key_block_of(made, text("alt")), alt_key);
  EXPECT_EQ(block_of(at(fields, "origin")), origin);
  EXPECT_EQ(key_block_of(fields, text("origin")), origin_key);
  EXPECT_EQ(block_of(at(fields, "childDeviceIds")), children);
}

TEST_F(ManagedObjectConversion, BorrowedAndNullTextsAreMovedAsTheyAre) {
  EXPECT_TRUE(same(
      fields_of(convertManagedObject, map_of("id", borrowed("7"), "name", borrowed("Pump"), "type",
                                             borrowed("t"), "childAssets", borrowed("a"))),
      map_of("id", borrowed("7"), "source", borrowed("Pump"), "childAssetIds", borrowed("a"),
             "measurements", map_of())));
  map_t fields = fields_of(convertManagedObject, map_of("id", null_text(), "name",
                                                        borrowed(nullptr), "type", null_text()));
  EXPECT_EQ(block_of(at(fields, "id")), 0U);
  EXPECT_TRUE(same(at(fields, "source"), borrowed(nullptr)));
}

TEST_F(ManagedObjectBuilding, AddsNoMembersAndChecksIdNameTypeInThisOrder) {
  static_assert(sizeof(ManagedObjectBuilder) == sizeof(TivraMessageBuilder));
  const auto error = [](bool id, bool name, bool type) {
    const auto good = [](bool is_good) { return is_good ? text("a") : whole(1); };
    return error_of([&] { const ManagedObjectBuilder made(good(id), good(name), good(type)); });
  };
  EXPECT_EQ(error(false, false, false), "Value for key 'id' is not a string.");
  EXPECT_EQ(error(true, false, false), "Value for key 'source' is not a string.");
  EXPECT_EQ(error(true, true, false), "Value for key 'type' is not a string.");
  EXPECT_EQ(error(true, true, true), "nothing thrown");
}

TEST_F(ManagedObjectBuilding, ListOfStringsIsStoredAnyOtherIsHandedBack) {
  ManagedObjectBuilder builder(text("1"), text("n"), text("t"));
  data_t clean = list_of(text("a"), borrowed("b"), null_text());
  data_t mixed = list_of(text("a"), data_t());
  const std::uint64_t mixed_block = block_of(mixed);
  EXPECT_FALSE(builder.tryAddSupported(std::move(clean.get<list_t>()), text("ops")).has_value());
  auto rest = builder.tryAddSupported(std::move(mixed.get<list_t>()), text("more"));
  ASSERT_TRUE(rest.has_value());
  EXPECT_EQ(block_of(data_t(std::move(*rest))), mixed_block);
  EXPECT_TRUE(same(at(builder.fields, "ops"), list_of(text("a"), borrowed("b"), null_text())));
  EXPECT_FALSE(has(builder.fields, "more"));
}

TEST_F(ManagedObjectBuilding, PositionIsMadeOfNumericComponentsOnly) {
  ManagedObjectBuilder builder(text("1"), text("n"), text("t"));
  EXPECT_TRUE(
      same(builder.tryAddPositionComponents(map_of("a", text("b"))), map_of("a", text("b"))));
  EXPECT_FALSE(has(builder.fields, "position"));
  EXPECT_TRUE(same(builder.tryAddPositionComponents(map_of("lat", real(1), "b", truth(true))),
                   map_of("b", truth(true))));
  EXPECT_TRUE(same(at(builder.fields, "position"), map_of("lat", real(1))));
  EXPECT_TRUE(builder.tryAddPositionComponents(map_of()).empty());
  EXPECT_TRUE(same(at(builder.fields, "position"), map_of("lat", real(1))));
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
