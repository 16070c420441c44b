// Details of a measurement: the table of its parameters, and fragments that its builder refuses.
#include "codec/conversions/measurement.hpp"

#include "tests/codec/examples.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class MeasurementValue : public HostFixture {
 protected:
  static map_t valueOf(map_t&& series) {
    SpareParts spares;
    return createMeasurementValue(std::move(series), spares);
  }
};
class FragmentIntake : public HostFixture {
 protected:
  SpareParts spares_;
  MeasurementMessageBuilder builder_{text("1"), text("7"), 0.5, text("t"), spares_};
};

TEST_F(MeasurementValue, ParamsAreTheSeriesOwnTable) {
  map_t series = mapOf("value", whole(1), "units", text("C"), "a", whole(2), "b", whole(3), "c",
                       whole(4), "d", whole(5), "e", whole(6), "f", whole(7), "g", whole(8));
  remove(series, "a");
  const vlt_underlying_map_table_t* const table = series.table();
  ASSERT_EQ(table->capacity, 16);
  map_t value = valueOf(std::move(series));
  const map_t& params = at(value, "params").get<map_t>();
  EXPECT_EQ(params.table(), table);
  EXPECT_EQ(table->capacity, 16);
  EXPECT_EQ(table->deleted, 3); // "a", "value", "units"
  EXPECT_EQ(table->live, 6);
}

TEST_F(MeasurementValue, EmptyParamsKeepTheTable) {
  map_t series = mapOf("value", whole(1));
  const vlt_underlying_map_table_t* const table = series.table();
  map_t value = valueOf(std::move(series));
  const map_t& params = at(value, "params").get<map_t>();
  EXPECT_EQ(params.table(), table);
  EXPECT_TRUE(params.empty());
  EXPECT_EQ(table->deleted, 1);
}

TEST_F(MeasurementValue, MissingValueIsReported) {
  EXPECT_EQ(errorOf([] { (void)valueOf(mapOf("units", text("C"))); }),
            "'value' key missing from measurement value");
  EXPECT_EQ(errorOf([] { (void)valueOf(mapOf()); }), "'value' key missing from measurement value");
}

TEST_F(FragmentIntake, OtherValueIsLeftUntouched) {
  data_t value = mapOf("S", mapOf("value", whole(1)), "bad", text(""));
  const std::uint64_t block = blockOf(value);
  EXPECT_FALSE(builder_.tryAddMeasurementFragment(value, spares_));
  EXPECT_EQ(blockOf(value), block);
  EXPECT_TRUE(same(value, mapOf("S", mapOf("value", whole(1)), "bad", text(""))));
  EXPECT_TRUE(builder_.measurements.empty());
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
