// A kept copy or table comes back once, in the same block. All others are freed.
#include "codec/spare_parts.hpp"

#include <gtest/gtest.h>

#include <array>
#include <set>

#include "tests/codec/notifications.hpp"
#include "tests/support/failing_allocations.hpp"
#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

using namespace plugins::pulsar;

using Spares = HostFixture;

// Keeps a copy of the constant; returns its block.
std::uint64_t keepCopy(SpareParts& spares, const constant_t& constant) {
  data_t copy = constant.copy();
  const std::uint64_t block = blockOf(copy);
  spares.keep(constant, std::move(copy));
  return block;
}

// Keeps a table of 8 slots; returns its block.
std::uint64_t keepTable(SpareParts& spares) {
  map_t map = mapOf("a", text("1"));
  const std::uint64_t block = blockOf(map);
  map.clear();
  spares.keepMap(std::move(map));
  return block;
}

// ---- copies

TEST_F(Spares, KeptCopyComesBackInItsBlock) {
  SpareParts spares;
  data_t copy = text("id");
  const std::uint64_t block = blockOf(copy);
  standin_reset_calls();
  spares.keep(DATA_T_id, std::move(copy));
  EXPECT_TRUE(copy.empty());
  const data_t taken = spares.take(DATA_T_id);
  EXPECT_EQ(standin_calls_total(), 0);
  EXPECT_EQ(blockOf(taken), block);
  EXPECT_TRUE(same(taken, text("id")));
}

TEST_F(Spares, MissingCopyIsMade) {
  SpareParts spares;
  const std::int64_t before = standin_live_blocks_total();
  const data_t taken = spares.take(DATA_T_id);
  EXPECT_TRUE(same(taken, text("id")));
  EXPECT_NE(blockOf(taken), blockOf(DATA_T_id));
  EXPECT_EQ(standin_live_blocks_total(), before + 1);
}

TEST_F(Spares, CopyIsTakenOnceOnly) {
  SpareParts spares;
  const std::uint64_t block = keepCopy(spares, DATA_T_id);
  const data_t first = spares.take(DATA_T_id);
  const data_t second = spares.take(DATA_T_id);
  EXPECT_EQ(blockOf(first), block);
  EXPECT_NE(blockOf(second), block);
  EXPECT_TRUE(same(second, text("id")));
}

TEST_F(Spares, TakenCopyCanBeKeptAgain) {
  SpareParts spares;
  keepCopy(spares, DATA_T_id);
  data_t taken = spares.take(DATA_T_id);
  const std::uint64_t block = blockOf(taken);
  spares.keep(DATA_T_id, std::move(taken));
  EXPECT_EQ(blockOf(spares.take(DATA_T_id)), block);
}

TEST_F(Spares, SecondCopyIsFreed) {
  SpareParts spares;
  const std::uint64_t block = keepCopy(spares, DATA_T_id);
  data_t second = text("id");
  const std::int64_t before = standin_live_blocks_total();
  spares.keep(DATA_T_id, std::move(second));
  EXPECT_TRUE(second.empty());
  EXPECT_EQ(standin_live_blocks_total(), before - 1);
  EXPECT_EQ(blockOf(spares.take(DATA_T_id)), block);
}

TEST_F(Spares, BorrowedStringIsNotKept) {
  SpareParts spares;
  data_t copy = borrowed("id");
  spares.keep(DATA_T_id, std::move(copy));
  EXPECT_TRUE(copy.empty());
  EXPECT_EQ(spares.take(DATA_T_id).type_tag(), std::uint32_t{VLT_TAG_STRING});
}

TEST_F(Spares, EveryConstantHasItsOwnPlace) {
  SpareParts spares;
  const std::array<const constant_t*, 6> constants = {&DATA_T_,         &DATA_T_ACTIVE,
                                                      &DATA_T_severity, &DATA_T_time,
                                                      &DATA_T_WARNING,  &OPERATION_TYPE_DATA_T};
  ASSERT_GE(OPERATION_TYPE_DATA_T.number(), 32u) << "no number beyond half a word";
  ASSERT_LT(OPERATION_TYPE_DATA_T.number(), constant_t::MAX_COUNT);
  std::array<std::uint64_t, 6> blocks{};
  for (std::size_t i = 0; i < 6; ++i) blocks.at(i) = keepCopy(spares, *constants.at(i));
  for (std::size_t i = 0; i < 6; ++i) {
    const data_t taken = spares.take(*constants.at(i));
    EXPECT_EQ(blockOf(taken), blocks.at(i)) << i;
    EXPECT_TRUE(same(taken, *constants.at(i)));
  }
}

TEST_F(Spares, CopiesLeftOverAreFreed) {
  const std::int64_t before = standin_live_blocks_total();
  {
    SpareParts spares;
    keepCopy(spares, DATA_T_);
    keepCopy(spares, DATA_T_id);
    keepCopy(spares, OPERATION_TYPE_DATA_T);
    static_cast<void>(spares.take(DATA_T_id));
    EXPECT_EQ(standin_live_blocks_total(), before + 2);
  }
  EXPECT_EQ(standin_live_blocks_total(), before);
}

// ---- tables

TEST_F(Spares, KeptTableComesBack) {
  SpareParts spares;
  const std::uint64_t block = keepTable(spares);
  standin_reset_calls();
  const map_t taken = spares.takeMap();
  EXPECT_EQ(standin_calls_total(), 0);
  ASSERT_EQ(blockOf(taken), block);
  EXPECT_EQ(counts_of(taken), (counts_t{0, 8, 0}));
}

TEST_F(Spares, WithoutATableTheMapHasNone) {
  SpareParts spares;
  standin_reset_calls();
  EXPECT_EQ(spares.takeMap().table(), nullptr);
  spares.keepMap(map_t());
  EXPECT_EQ(spares.takeMap().table(), nullptr);
  EXPECT_EQ(standin_calls_total(), 0);
}

TEST_F(Spares, TablesOfOtherCapacitiesAreFreed) {
  for (const std::int64_t capacity : {0, 7, 9, 16}) {
    SCOPED_TRACE(capacity);
    SpareParts spares;
    const std::int64_t before = standin_live_blocks_total();
    map_t map = table_of(capacity);
    spares.keepMap(std::move(map));
    EXPECT_EQ(map.table(), nullptr);
    EXPECT_EQ(standin_live_blocks_total(), before);
    EXPECT_EQ(spares.takeMap().table(), nullptr);
  }
}

TEST_F(Spares, FifthTableIsFreed) {
  SpareParts spares;
  const std::int64_t before = standin_live_blocks_total();
  std::set<std::uint64_t> kept;
  for (int i = 0; i < 4; ++i) kept.insert(keepTable(spares));
  EXPECT_EQ(standin_live_blocks_total(), before + 4);
  keepTable(spares);
  EXPECT_EQ(standin_live_blocks_total(), before + 4);
  std::array<map_t, 4> taken;
  std::set<std::uint64_t> blocks;
  for (map_t& map : taken) {
    map = spares.takeMap();
    blocks.insert(blockOf(map));
  }
  EXPECT_EQ(blocks, kept);
  EXPECT_EQ(spares.takeMap().table(), nullptr);
}

} // namespace
} // namespace com::velanto::connectivity::test
