// One measurement value: how a series is shaped, and the builder's intake of a fragment.
#include "codec/conversions/measurement.hpp"

#include "tests/codec/examples.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class MeasurementValue : public HostFixture {};
class FragmentIntake : public HostFixture {
 protected:
  MeasurementMessageBuilder builder_{text("1"), text("7"), 0.5, text("t")};
};

TEST_F(MeasurementValue, ValueAndUnitsStandOutAndTheRestAreParams) {
  const map_t value =
      createMeasurementValue(map_of("value", text("12.5"), "units", list_of(whole(1)), "unit",
                                    text("C"), "o6a_More", map_of("a", whole(1))));
  EXPECT_TRUE(same(value, map_of("value", text("12.5"), "units", list_of(whole(1)), "params",
                                 map_of("unit", text("C"), "o6a_More", map_of("a", whole(1))))));
}

TEST_F(MeasurementValue, UnitsAreLeftOutWhenThereAreNone) {
  EXPECT_TRUE(same(createMeasurementValue(map_of("value", truth(true), "unit", text("C"))),
                   map_of("value", truth(true), "params", map_of("unit", text("C")))));
  EXPECT_TRUE(same(createMeasurementValue(map_of("value", data_t(), "units", data_t())),
                   map_of("value", data_t(), "units", data_t(), "params", map_of())));
}

TEST_F(MeasurementValue, EntriesNamedLikeTheResultsStayParams) {
  EXPECT_TRUE(same(createMeasurementValue(map_of("value", whole(1), "params", whole(2))),
                   map_of("value", whole(1), "params", map_of("params", whole(2)))));
}

TEST_F(MeasurementValue, ParamsAreTheSeriesOwnTableTombstonesIncluded) {
  map_t series = map_of("value", whole(1), "units", text("C"), "a", whole(2), "b", whole(3), "c",
                        whole(4), "d", whole(5), "e", whole(6), "f", whole(7), "g", whole(8));
  remove(series, "a");
  const vlt_underlying_map_table_t* const table = series.table();
  ASSERT_EQ(table->capacity, 16);
  map_t value = createMeasurementValue(std::move(series));
  const map_t& params = at(value, "params").get<map_t>();
  EXPECT_EQ(params.table(), table);
  EXPECT_EQ(table->capacity, 16);
  EXPECT_EQ(table->deleted, 3); // "a", "value", "units"
  EXPECT_EQ(table->live, 6);
}

TEST_F(MeasurementValue, ParamsKeepTheTableAlsoWhenNothingIsLeft) {
  map_t series = map_of("value", whole(1));
  const vlt_underlying_map_table_t* const table = series.table();
  map_t value = createMeasurementValue(std::move(series));
  const map_t& params = at(value, "params").get<map_t>();
  EXPECT_EQ(params.table(), table);
  EXPECT_TRUE(params.empty());
  EXPECT_EQ(table->deleted, 1);
}

TEST_F(MeasurementValue, MissingValueIsReported) {
  EXPECT_EQ(error_of([] { (void)createMeasurementValue(map_of("units", text("C"))); }),
            "'value' key missing from measurement value");
  EXPECT_EQ(error_of([] { (void)createMeasurementValue(map_of()); }),
            "'value' key missing from measurement value");
}

TEST_F(MeasurementValue, BuilderReplacesWhatWasSetBefore) {
  MeasurementValueBuilder builder(whole(1));
  builder.setUnits(text("C"));
  builder.setUnits(text("F"));
  builder.setParams(map_of("a", whole(1)));
  builder.setParams(map_of());
  EXPECT_TRUE(same(std::move(builder).getResult(),
                   map_of("value", whole(1), "units", text("F"), "params", map_of())));
}

TEST_F(FragmentIntake, BuilderAddsNoMembersAndSetsItsFields) {
  static_assert(sizeof(MeasurementMessageBuilder) == sizeof(TivraMessageBuilder));
  EXPECT_TRUE(same(builder_.fields, map_of("id", text("1"), "source", text("7"), "time", real(0.5),
                                           "type", text("t"))));
  EXPECT_TRUE(builder_.measurements.empty());
}

TEST_F(FragmentIntake, BuilderChecksIdSourceTypeInThisOrder) {
  const auto error = [](bool id, bool source) {
    const auto good = [](bool is_good) { return is_good ? text("a") : whole(1); };
    return error_of(
        [&] { const MeasurementMessageBuilder made(good(id), good(source), 0.0, whole(1)); });
  };
  EXPECT_EQ(error(false, false), "Value for key 'id' is not a string.");
  EXPECT_EQ(error(true, false), "Value for key 'source' is not a string.");
  EXPECT_EQ(error(true, true), "Value for key 'type' is not a string.");
}

TEST_F(FragmentIntake, ValidFragmentIsTakenAndItsNameIsDropped) {
  const auto rest = builder_.tryAddMeasurementFragment(
      {text("F"), map_of("S", map_of("value", whole(1)), whole(2), map_of("value", real(2)))});
  EXPECT_FALSE(rest.has_value());
  EXPECT_TRUE(
      same(builder_.measurements, map_of("S", map_of("value", whole(1), "params", map_of()),
                                         whole(2), map_of("value", real(2), "params", map_of()))));
  EXPECT_FALSE(has(builder_.fields, "F"));
}

TEST_F(FragmentIntake, SeriesOfANameThatIsThereIsDropped) {
  (void)builder_.tryAddMeasurementFragment({text("F"), map_of("S", map_of("value", whole(1)))});
  const auto rest =
      builder_.tryAddMeasurementFragment({text("G"), map_of("S", map_of("value", whole(2)))});
  EXPECT_FALSE(rest.has_value());
  EXPECT_TRUE(
      same(builder_.measurements, map_of("S", map_of("value", whole(1), "params", map_of()))));
}

TEST_F(FragmentIntake, FragmentWithoutEntriesIsTakenAndAddsNothing) {
  EXPECT_FALSE(builder_.tryAddMeasurementFragment({text("F"), map_of()}).has_value());
  EXPECT_EQ(block_of(builder_.measurements), 0U);
}

TEST_F(FragmentIntake, OtherEntryIsHandedBackUntouched) {
  std::pair<data_t, data_t> entry(text("F"),
                                  map_of("S", map_of("value", whole(1)), "bad", text("")));
  const std::uint64_t key = block_of(entry.first);
  const std::uint64_t value = block_of(entry.second);
  const auto rest = builder_.tryAddMeasurementFragment(std::move(entry));
  ASSERT_TRUE(rest.has_value());
  EXPECT_EQ(block_of(rest->first), key);
  EXPECT_EQ(block_of(rest->second), value);
  EXPECT_TRUE(same(rest->second, map_of("S", map_of("value", whole(1)), "bad", text(""))));
  EXPECT_TRUE(builder_.measurements.empty());
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
