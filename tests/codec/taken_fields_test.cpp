// Fields are kept where they are put and freed once, whoever has them in the end.
#include "codec/taken_fields.hpp"

#include <gtest/gtest.h>

#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {
namespace {

using plugins::pulsar::TakenFields;

// Fails a test that leaves a block behind.
using TakenFieldsTest = HostFixture;

TEST_F(TakenFieldsTest, FieldsStayWhereTheyWereKept) {
  TakenFields taken;
  const data_t& first = taken.keep(text("a"));
  data_t& second = taken.keep(map_of("k", text("b")));
  EXPECT_EQ(first, text("a"));
  EXPECT_EQ(second, data_t(map_of("k", text("b"))));
}

TEST_F(TakenFieldsTest, AsManyAsTheLargestConversionTakesFindRoom) {
  TakenFields taken;
  for (std::size_t i = 0; i < TakenFields::MOST; ++i) {
    EXPECT_EQ(taken.keep(text("field")), text("field"));
  }
}

TEST_F(TakenFieldsTest, FieldThatMovedOnIsNoLongerFreedHere) {
  data_t event;
  {
    TakenFields taken;
    event = std::move(taken.keep(text("a")));
  }
  EXPECT_EQ(event, text("a"));
}

TEST_F(TakenFieldsTest, MoveTakesTheFieldsAlong) {
  TakenFields from;
  static_cast<void>(from.keep(text("a")));
  TakenFields to = std::move(from);
  static_cast<void>(to.keep(text("b")));
  static_cast<void>(from.keep(text("c")));
}

TEST_F(TakenFieldsTest, AssignmentFreesWhatWasThereBefore) {
  TakenFields from;
  static_cast<void>(from.keep(text("a")));
  TakenFields to;
  static_cast<void>(to.keep(text("b")));
  const std::int64_t before = standin_live_blocks_total();
  to = std::move(from);
  EXPECT_EQ(standin_live_blocks_total(), before - 1);
}

TEST_F(TakenFieldsTest, AssignmentToItselfKeepsThem) {
  TakenFields taken;
  const data_t& field = taken.keep(text("a"));
  const std::int64_t before = standin_live_blocks_total();
  TakenFields& alias = taken;
  taken = std::move(alias);
  ASSERT_EQ(standin_live_blocks_total(), before);
  EXPECT_EQ(field, text("a"));
}

} // namespace
} // namespace com::velanto::connectivity::test
