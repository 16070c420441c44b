// Details of a managed object: the slots of its fields, and the lists that its builder hands back.
#include "codec/conversions/managed_object.hpp"

#include "tests/codec/examples.hpp"
#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class ManagedObjectConversion : public HostFixture {};
class ManagedObjectBuilding : public HostFixture {};

map_t bare() { return mapOf("id", text("7"), "name", text("Pump"), "type", text("o6a_Device")); }

// The fields of the event, assigned one by one to an empty map in the order of the steps.
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

TEST_F(ManagedObjectConversion, PlacesFieldsAsSingleAssignmentsDo) {
  for (int count = 0; count <= 80; ++count) {
    SCOPED_TRACE(std::to_string(count) + " further fields");
    map_t payload = bare();
    for (int i = 0; i < count; ++i) {
      payload[text(("site_Field" + std::to_string(i * 37)).c_str())] = whole(i);
    }
    if (count % 5 == 4) payload[text("measurements")] = text("mine");
    const map_t expected = singleAssignments(payload);
    expect_same_slots(fieldsOf(convertManagedObject, std::move(payload)), expected);
  }
}

TEST_F(ManagedObjectBuilding, StoresOnlyListsOfStrings) {
  SpareParts spares;
  ManagedObjectBuilder builder(text("1"), text("n"), spares);
  data_t clean = listOf(text("a"), borrowed("b"), nullText());
  data_t mixed = listOf(text("a"), data_t());
  const std::uint64_t mixed_block = blockOf(mixed);
  EXPECT_FALSE(builder.tryAddSupported(std::move(clean.get<list_t>()), DATA_T_supportedOperations)
                   .has_value());
  auto rest = builder.tryAddSupported(std::move(mixed.get<list_t>()), DATA_T_supportedMeasurements);
  ASSERT_TRUE(rest.has_value());
  EXPECT_EQ(blockOf(data_t(std::move(*rest))), mixed_block);
  EXPECT_TRUE(same(at(builder.fields, "supportedOperations"),
                   listOf(text("a"), borrowed("b"), nullText())));
  EXPECT_FALSE(has(builder.fields, "supportedMeasurements"));
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
