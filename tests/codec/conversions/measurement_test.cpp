// Measurements: the worked example, the order of the checks, and which entries are fragments.
#include "codec/conversions/measurement.hpp"

#include <set>

#include "tests/codec/examples.hpp"
#include "tests/codec/faults.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class MeasurementConversion : public HostFixture {};
class Fragments : public HostFixture {};

// The fields of a measurement that has one more entry.
map_t fieldsWith(const char* key, data_t&& value) {
  map_t payload = measurement_example();
  payload[text(key)] = std::move(value);
  return fields_of(convertMeasurement, std::move(payload));
}
// What these fields are, with one more.
map_t expectedWith(const char* key, data_t&& value) {
  map_t fields = measurement_fields();
  fields[text(key)] = std::move(value);
  return fields;
}

TEST_F(MeasurementConversion, WorkedExampleBecomesTheWholeEvent) {
  const Message message = converted(convertMeasurement, measurement_example());
  EXPECT_TRUE(same(message.getPayload(), measurement_fields()));
  EXPECT_TRUE(
      same(message.getMetadataMap(), map_of("vlt.type", text("com.tivra.ostrovia.Measurement"))));
}

TEST_F(MeasurementConversion, FirstFaultInTheOrderOfTheStepsIsReported) {
  std::vector<fault_t> faults;
  faults.push_back({"source", {}, "Required key 'source' missing from message payload"});
  faults.push_back({"id", {}, "Required key 'id' missing from message payload"});
  faults.push_back({"source", bytes("7"), wrong_kind("source", "map", "buffer")});
  faults.push_back({"source.id", {}, "Required key 'id' missing from source"});
  faults.push_back({"time", {}, "Required key 'time' missing from message payload"});
  faults.push_back({"time", truth(true), wrong_kind("time", "string", "boolean")});
  faults.push_back({"time", text("12:00"), "Error parsing timestamp '12:00' in key 'time'"});
  faults.push_back({"type", {}, "Required key 'type' missing from message payload"});
  faults.push_back({"id", whole(1), "Value for key 'id' is not a string."});
  faults.push_back({"source.id", whole(7), "Value for key 'source' is not a string."});
  faults.push_back({"type", real(1), "Value for key 'type' is not a string."});
  expectReportedInOrder(convertMeasurement, measurement_example, faults);
}

TEST_F(MeasurementConversion, UnreadableDatesAreCarriedOverAsTheyAre) {
  EXPECT_TRUE(same(fieldsWith("creationTime", text("x")), expectedWith("creationTime", text("x"))));
  EXPECT_TRUE(same(fieldsWith("lastUpdated", whole(1)), expectedWith("lastUpdated", whole(1))));
}

TEST_F(MeasurementConversion, NoSeriesGivesANullTable) {
  map_t payload = measurement_example();
  remove(payload, "o6a_Temperature");
  map_t fields = fields_of(convertMeasurement, std::move(payload));
  EXPECT_TRUE(same(at(fields, "measurements"), map_of()));
  EXPECT_EQ(block_of(at(fields, "measurements")), 0U);
}

TEST_F(MeasurementConversion, SeriesGoIntoOneMapWithoutTheirFragmentsNames) {
  const map_t fields = fieldsWith(
      "o6a_Wind", map_of("speed", map_of("value", whole(3)), "gust", map_of("value", text("9"))));
  const map_t expected =
      expectedWith("measurements",
                   map_of("T", map_of("value", real(21.5), "units", text("C"), "params", map_of()),
                          "speed", map_of("value", whole(3), "params", map_of()), "gust",
                          map_of("value", text("9"), "params", map_of())));
  EXPECT_TRUE(same(fields, expected));
}

// A fragment of so many series, each with a value, a unit and a note of its own.
map_t manySeries(int count) {
  map_t fragment;
  for (int i = 0; i < count; ++i) {
    const std::string name = "S" + std::to_string(i);
    fragment[text(name.c_str())] = map_of("note", text(("n" + name).c_str()), "value", whole(i),
                                          "units", text(("u" + name).c_str()));
  }
  return fragment;
}
// What becomes of them.
map_t manyMeasurements(int count) {
  map_t measurements;
  for (int i = 0; i < count; ++i) {
    const std::string name = "S" + std::to_string(i);
    measurements[text(name.c_str())] =
        map_of("value", whole(i), "units", text(("u" + name).c_str()), "params",
               map_of("note", text(("n" + name).c_str())));
  }
  return measurements;
}

TEST_F(MeasurementConversion, FragmentMayHaveAnyNumberOfSeries) {
  for (const int count : {1, 7, 8, 9, 16, 20, 100}) {
    map_t payload = measurement_example();
    remove(payload, "o6a_Temperature");
    payload[text("o6a_Many")] = manySeries(count);
    EXPECT_TRUE(same(fields_of(convertMeasurement, std::move(payload)),
                     expectedWith("measurements", manyMeasurements(count))))
        << count;
  }
}

TEST_F(MeasurementConversion, OneSeriesOfManyWithoutANumberKeepsTheFragmentWhole) {
  const map_t good = manySeries(12);
  std::vector<std::string> names; // in the order in which they are looked at
  for (const auto& [key, value] : good) names.emplace_back(key.get<const char*>());
  ASSERT_EQ(names.size(), 12U);
  for (const std::string& name : {names[0], names[7], names[8], names[11]}) {
    const auto fragment = [&] {
      map_t mixed = good.copy();
      at(mixed, name.c_str()).get<map_t>()[text("value")] = text("none");
      return mixed;
    };
    EXPECT_TRUE(same(fieldsWith("o6a_Many", fragment()), expectedWith("o6a_Many", fragment())))
        << name;
  }
}

// The value of series T in the fragment that a walk over the payload meets first.
double firstValueOfT(map_t& payload, const char* other) {
  for (auto [key, value] : payload) {
    if (key != text(other) && key != text("o6a_Temperature")) continue;
    return at(at(value.get<map_t>(), "T").get<map_t>(), "value").get<double>();
  }
  return 0;
}

TEST_F(MeasurementConversion, OfTwoSeriesOfOneNameTheFirstInSlotOrderStays) {
  std::set<double> seen;
  for (const char* const other : {"a", "b", "c", "d", "e", "f", "g", "h"}) {
    map_t payload = measurement_example();
    payload[text(other)] = map_of("T", map_of("value", real(-1)));
    const double first = firstValueOfT(payload, other);
    map_t fields = fields_of(convertMeasurement, std::move(payload));
    auto& series = at(fields, "measurements").get<map_t>();
    EXPECT_EQ(series.size(), 1U);
    EXPECT_TRUE(same(at(at(series, "T").get<map_t>(), "value"), real(first))) << other;
    seen.insert(first);
  }
  EXPECT_EQ(seen.size(), 2U); // each of the two was first at least once
}

TEST_F(MeasurementConversion, EmptyFragmentVanishes) {
  EXPECT_TRUE(same(fieldsWith("o6a_Nothing", map_of()), measurement_fields()));
  map_t emptied = map_of("x", whole(1));
  remove(emptied, "x");
  EXPECT_TRUE(same(fieldsWith("o6a_Emptied", std::move(emptied)), measurement_fields()));
}

TEST_F(MeasurementConversion, EntriesThatAreNoMapsAreCopiedOver) {
  EXPECT_TRUE(same(fieldsWith("more", text("x")), expectedWith("more", text("x"))));
  EXPECT_TRUE(same(fieldsWith("more", whole(1)), expectedWith("more", whole(1))));
  EXPECT_TRUE(same(fieldsWith("more", data_t()), expectedWith("more", data_t())));
  EXPECT_TRUE(same(fieldsWith("more", list_of(map_of("T", map_of("value", whole(1))))),
                   expectedWith("more", list_of(map_of("T", map_of("value", whole(1)))))));
}

TEST_F(MeasurementConversion, InvalidFragmentIsCopiedOverWholeWithItsValidSeries) {
  const auto fragment = [] {
    return map_of("good", map_of("value", whole(1), "units", text("m")), "bad",
                  map_of("units", text("m")));
  };
  EXPECT_TRUE(same(fieldsWith("o6a_Mixed", fragment()), expectedWith("o6a_Mixed", fragment())));
  for (const char* const value : {"0x10", "abc", ""}) {
    const auto series = [&] { return map_of("T", map_of("value", text(value))); };
    EXPECT_TRUE(same(fieldsWith("o6a_T", series()), expectedWith("o6a_T", series()))) << value;
  }
}

TEST_F(MeasurementConversion, FieldNamedMeasurementsReplacesTheSeries) {
  EXPECT_TRUE(
      same(fieldsWith("measurements", text("mine")), expectedWith("measurements", text("mine"))));
  EXPECT_TRUE(same(fieldsWith("measurements", map_of("T", whole(1))),
                   expectedWith("measurements", map_of("T", whole(1)))));
}

TEST_F(MeasurementConversion, FragmentNamedMeasurementsIsAFragmentLikeAnyOther) {
  map_t payload = measurement_example();
  remove(payload, "o6a_Temperature");
  payload[text("measurements")] = map_of("S", map_of("value", whole(1)));
  EXPECT_TRUE(same(
      fields_of(convertMeasurement, std::move(payload)),
      expectedWith("measurements", map_of("S", map_of("value", whole(1), "params", map_of())))));
}

TEST_F(MeasurementConversion, BlocksAreTheNotificationsOwn) {
  map_t payload = measurement_example();
  auto& series = at(at(payload, "o6a_Temperature").get<map_t>(), "T").get<map_t>();
  series[text("value")] = text("21.5");
  series[text("extra")] = list_of(whole(1));
  const std::uint64_t value = block_of(at(series, "value"));
  const std::uint64_t units = block_of(at(series, "units"));
  const std::uint64_t extra = block_of(at(series, "extra"));
  const std::uint64_t table = block_of(series);
  const std::uint64_t name = key_block_of(at(payload, "o6a_Temperature").get<map_t>(), text("T"));
  const std::uint64_t note = block_of(at(payload, "o6a_Note"));
  const std::uint64_t note_key = key_block_of(payload, text("o6a_Note"));
  map_t fields = fields_of(convertMeasurement, std::move(payload));
  auto& gathered = at(fields, "measurements").get<map_t>();
  auto& made = at(gathered, "T").get<map_t>();
  EXPECT_EQ(block_of(at(made, "value")), value);
  EXPECT_EQ(block_of(at(made, "units")), units);
  EXPECT_EQ(block_of(at(made, "params")), table); // the series' own table
  EXPECT_EQ(block_of(at(at(made, "params").get<map_t>(), "extra")), extra);
  EXPECT_EQ(key_block_of(gathered, text("T")), name);
  EXPECT_EQ(block_of(at(fields, "o6a_Note")), note);
  EXPECT_EQ(key_block_of(fields, text("o6a_Note")), note_key);
}

TEST_F(MeasurementConversion, BorrowedStringsAreReadAndStayBorrowed) {
  const map_t fields = fields_of(
      convertMeasurement,
      map_of("id", borrowed("1"), "source", map_of("id", borrowed("7")), "time",
             borrowed(EXAMPLE_TIME), "type", borrowed("t"), "creationTime", borrowed(EXAMPLE_TIME),
             "F", map_of(borrowed("S"), map_of("value", borrowed("1.5"), "units", borrowed("m"))),
             "note", borrowed("n")));
  EXPECT_TRUE(
      same(fields, map_of("id", borrowed("1"), "source", borrowed("7"), "time",
                          real(EXAMPLE_SECONDS), "type", borrowed("t"), "creationTime",
                          real(EXAMPLE_SECONDS), "note", borrowed("n"), "measurements",
                          map_of(borrowed("S"), map_of("value", borrowed("1.5"), "units",
                                                       borrowed("m"), "params", map_of())))));
}

TEST_F(MeasurementConversion, NullTextIsNoNumberAndNoTime) {
  const auto fragment = [] { return map_of("T", map_of("value", null_text())); };
  EXPECT_TRUE(same(fieldsWith("o6a_Null", fragment()), expectedWith("o6a_Null", fragment())));
  map_t payload = measurement_example();
  payload[text("time")] = borrowed(nullptr);
  EXPECT_EQ(conversion_error(convertMeasurement, std::move(payload)),
            "Error parsing timestamp '' in key 'time'");
}

TEST_F(Fragments, SeriesIsValidByItsValueAlone) {
  EXPECT_FALSE(MeasurementMessageBuilder::isValidSeriesValue(map_of()));
  EXPECT_FALSE(MeasurementMessageBuilder::isValidSeriesValue(map_of("units", text("C"))));
  EXPECT_FALSE(MeasurementMessageBuilder::isValidSeriesValue(map_of("value", data_t())));
  EXPECT_FALSE(MeasurementMessageBuilder::isValidSeriesValue(map_of("value", truth(true))));
  EXPECT_FALSE(MeasurementMessageBuilder::isValidSeriesValue(map_of("value", list_of(whole(1)))));
  EXPECT_FALSE(MeasurementMessageBuilder::isValidSeriesValue(map_of(borrowed("value"), whole(1))));
  EXPECT_TRUE(MeasurementMessageBuilder::isValidSeriesValue(map_of("value", decimal(1))));
  EXPECT_TRUE(MeasurementMessageBuilder::isValidSeriesValue(map_of("value", text("12abc"))));
  EXPECT_TRUE(
      MeasurementMessageBuilder::isValidSeriesValue(map_of("value", whole(1), "units", list_of())));
}

TEST_F(Fragments, FragmentIsValidWhenAllItsEntriesAre) {
  EXPECT_TRUE(MeasurementMessageBuilder::isValidFragment(map_of()));
  EXPECT_TRUE(MeasurementMessageBuilder::isValidFragment(
      map_of("a", map_of("value", whole(1)), whole(2), map_of("value", text("2")))));
  EXPECT_FALSE(MeasurementMessageBuilder::isValidFragment(map_of("value", whole(1))));
  EXPECT_FALSE(MeasurementMessageBuilder::isValidFragment(
      map_of("a", map_of("value", whole(1)), "b", map_of())));
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
