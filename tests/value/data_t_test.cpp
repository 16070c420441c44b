// The life of a value: its constructions, and the effects of copying, moving and destroying it on
// its block.
#include "value/data_t.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/failing_allocations.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/value/kinds.hpp"

namespace com::velanto::connectivity::test {
namespace {

using DataT = HostFixture;

static_assert(sizeof(data_t) == 16);
static_assert(!std::is_polymorphic_v<data_t>);
static_assert(std::is_nothrow_move_constructible_v<data_t>);
static_assert(std::is_nothrow_move_assignable_v<data_t>);
static_assert(std::is_nothrow_destructible_v<data_t>);

// ---- construction

TEST_F(DataT, DefaultIsEmptyWithZeroContent) {
  const data_t value;
  EXPECT_TRUE(value.empty());
  EXPECT_TRUE(is_zeroed(value));
}

TEST_F(DataT, ScalarsCarryTheirTagAndBits) {
  EXPECT_EQ(data_t(true).type_tag(), 1u);
  EXPECT_EQ(content_bits(data_t(true)), 1u);
  EXPECT_EQ(content_bits(data_t(false)), 0u);
  EXPECT_EQ(data_t(-2.0).type_tag(), 2u);
  EXPECT_EQ(content_bits(data_t(-2.0)), 0xc000000000000000u);
  EXPECT_EQ(data_t(std::int64_t{-1}).type_tag(), 3u);
  EXPECT_EQ(content_bits(data_t(std::int64_t{-1})), 0xffffffffffffffffu);
  EXPECT_EQ(data_t(-7LL).type_tag(), 3u);
  EXPECT_EQ(content_bits(data_t(-7LL)), 0xfffffffffffffff9u);
  EXPECT_EQ(decimal(0x0123456789abcdef).type_tag(), 4u);
  EXPECT_EQ(content_bits(decimal(0x0123456789abcdef)), 0x0123456789abcdefu);
}

TEST_F(DataT, StringIsCopiedOnceAndOwned) {
  char original[] = "Tenant";
  standin_reset_calls();
  const data_t value(static_cast<const char*>(original));
  EXPECT_EQ(standin_calls(STANDIN_COPY_STRING), 1);
  EXPECT_EQ(standin_calls_total(), 1);
  original[0] = 'x';
  EXPECT_EQ(value.type_tag(), 5u);
  EXPECT_STREQ(value.get<const char*>(), "Tenant");
}

TEST_F(DataT, EmptyStringIsNoEmptyValue) {
  const data_t value("");
  EXPECT_FALSE(value.empty());
  EXPECT_EQ(value.type_tag(), 5u);
  EXPECT_STREQ(value.get<const char*>(), "");
}

TEST_F(DataT, NullStringIsRefused) {
  EXPECT_THROW(data_t(static_cast<const char*>(nullptr)), std::runtime_error);
  EXPECT_EQ(errorOf([] { data_t(static_cast<const char*>(nullptr)); }),
            "Cannot use a null char* as a data_t value (consider using an empty data_t() instead)");
}

TEST_F(DataT, StringWithoutMemoryIsBadAlloc) {
  EXPECT_EQ(failEachAllocation([] { data_t("text"); }, [] {}), 1u);
}

TEST_F(DataT, ContainersAreTakenOverWithoutAHostCall) {
  list_t list(standin_make_list(2, 2));
  map_t map(vlt_allocate_map(8));
  buffer_t buffer(standin_make_buffer(3));
  const void* const table = map.table();
  standin_reset_calls();
  const data_t values[] = {std::move(list), std::move(map), std::move(buffer)};
  EXPECT_EQ(standin_calls_total(), 0);
  EXPECT_EQ(values[0].type_tag(), 6u);
  EXPECT_EQ(values[1].type_tag(), 7u);
  EXPECT_EQ(values[2].type_tag(), 8u);
  EXPECT_EQ(content_bits(values[1]), reinterpret_cast<std::uintptr_t>(table));
  EXPECT_EQ(list.size(), 0u);
  EXPECT_EQ(map.table(), nullptr);
  EXPECT_EQ(buffer.size(), 0u);
}

// ---- kinds

TEST_F(DataT, EveryKindTellsItsTag) {
  for (const kind_t& kind : KINDS) {
    SCOPED_TRACE(kind.name);
    const data_t value = kind.make();
    EXPECT_EQ(value.type_tag(), kind.tag);
    EXPECT_EQ(value.empty(), kind.tag == 0);
    EXPECT_EQ(value.is_string(), kind.tag == 5 || kind.tag == 10);
  }
}

TEST_F(DataT, KindNamesFollowTheTags) {
  const char* const names[] = {"empty", "boolean", "double", "integer", "decimal", "string",
                               "list",  "map",     "buffer", "custom",  "string"};
  for (std::uint32_t tag = 0; tag <= 10; ++tag) EXPECT_STREQ(kind_name(tag), names[tag]);
  EXPECT_STREQ(kind_name(11), "Unknown");
  EXPECT_STREQ(kind_name(std::numeric_limits<std::uint32_t>::max()), "Unknown");
}

TEST_F(DataT, NullReadsAsTheEmptyString) {
  EXPECT_STREQ(text_or_empty(nullptr), "");
  EXPECT_STREQ(text_or_empty("a"), "a");
}

// ---- copying

TEST_F(DataT, CopyHasTheContentInAnotherBlock) {
  for (const kind_t& kind : KINDS) {
    SCOPED_TRACE(kind.name);
    const data_t source = kind.make();
    const std::uint64_t bits = content_bits(source);
    const bool has_block = kind.tag >= 5 && kind.tag <= 10;
    standin_reset_calls();
    const data_t copy(source);
    EXPECT_EQ(standin_calls_total(), has_block ? 1 : 0);
    EXPECT_EQ(to_string(copy), to_string(source));
    EXPECT_EQ(content_bits(source), bits);
    EXPECT_EQ(source.type_tag(), kind.tag);
    EXPECT_EQ(copy.type_tag(), kind.tag == 10 ? 5u : kind.tag);
    EXPECT_EQ(content_bits(copy) != bits, has_block);
  }
}

TEST_F(DataT, CopiedCustomObjectKeepsItsLabel) {
  const data_t source = custom(77);
  const data_t copy(source);
  EXPECT_EQ(standin_custom_label(copy.get<vlt_underlying_custom_t>()), 77u);
}

TEST_F(DataT, NestedBlocksAreNotSharedByACopy) {
  data_t source = listOf(listOf(text("inner")), mapOf("key", text("value")));
  data_t copy(source);
  copy.get<list_t>()[0].get<list_t>()[0] = whole(1);
  at(copy.get<list_t>()[1].get<map_t>(), "key") = whole(2);
  EXPECT_EQ(source, listOf(listOf(text("inner")), mapOf("key", text("value"))));
  EXPECT_EQ(copy, listOf(listOf(whole(1)), mapOf("key", whole(2))));
}

TEST_F(DataT, NullBlocksStayNullInCopies) {
  for (std::uint32_t tag = 5; tag <= 10; ++tag) {
    SCOPED_TRACE(tag);
    const data_t source = tagged(tag);
    const data_t copy(source);
    EXPECT_EQ(copy.type_tag(), tag == 10 ? 5u : tag);
    EXPECT_EQ(content_bits(copy), 0u);
  }
}

TEST_F(DataT, CopyAssignmentFreesTheOldContent) {
  const data_t source = text("new");
  data_t target = listOf(text("old"), text("older"));
  const std::int64_t before = standin_live_blocks_total();
  target = source;
  EXPECT_EQ(target, text("new"));
  EXPECT_EQ(source, text("new"));
  EXPECT_EQ(standin_live_blocks_total(), before - 3 + 1);
}

TEST_F(DataT, CopyAssignmentToItselfChangesNothing) {
  data_t value = text("same");
  const std::uint64_t bits = content_bits(value);
  const data_t& alias = value;
  value = alias;
  EXPECT_EQ(content_bits(value), bits);
  EXPECT_STREQ(value.get<const char*>(), "same");
}

TEST_F(DataT, CopyAssignmentFromItsOwnElement) {
  data_t value = listOf(listOf(text("deep")));
  value = static_cast<const data_t&>(value.get<list_t>()[0]);
  EXPECT_EQ(value, listOf(text("deep")));
}

TEST_F(DataT, CopyWithoutMemoryLeaksNothing) {
  const data_t source = listOf(text("a"), mapOf("b", bytes("c")), custom(4));
  const std::int64_t before = standin_live_blocks_total();
  const auto copy = [&] { const data_t copied(source); };
  const auto unchanged = [&] { EXPECT_EQ(standin_live_blocks_total(), before); };
  EXPECT_EQ(failEachAllocation(copy, unchanged), 6u);
}

TEST_F(DataT, AssignmentWithoutMemoryKeepsTheTarget) {
  const data_t source = listOf(text("a"), mapOf("b", bytes("c")), borrowed("d"));
  data_t target = text("kept");
  const std::uint64_t bits = content_bits(target);
  const auto assign = [&] { target = source; };
  const auto verify = [&] {
    const bool failed = standin_failed_allocations() > 0;
    EXPECT_EQ(content_bits(target) == bits, failed);
    EXPECT_EQ(target == text("kept"), failed);
  };
  EXPECT_EQ(failEachAllocation(assign, verify), 6u);
}

// ---- moving

TEST_F(DataT, MoveTakesTheBytesAndZeroesTheSource) {
  for (const kind_t& kind : KINDS) {
    SCOPED_TRACE(kind.name);
    data_t source = kind.make();
    const std::uint64_t bits = content_bits(source);
    standin_reset_calls();
    const data_t target(std::move(source));
    EXPECT_EQ(standin_calls_total(), 0);
    EXPECT_EQ(target.type_tag(), kind.tag);
    EXPECT_EQ(content_bits(target), bits);
    EXPECT_TRUE(is_zeroed(source));
  }
}

TEST_F(DataT, MoveOntoAnEmptyValueCallsNoHost) {
  for (const kind_t& kind : KINDS) {
    SCOPED_TRACE(kind.name);
    data_t source = kind.make();
    const std::uint64_t bits = content_bits(source);
    data_t target;
    standin_reset_calls();
    target = std::move(source);
    EXPECT_EQ(standin_calls_total(), 0);
    EXPECT_EQ(target.type_tag(), kind.tag);
    EXPECT_EQ(content_bits(target), bits);
    EXPECT_TRUE(is_zeroed(source));
  }
}

TEST_F(DataT, MoveAssignmentFreesTheOldContent) {
  data_t source = text("new");
  data_t target = listOf(text("old"));
  const std::int64_t before = standin_live_blocks_total();
  standin_reset_calls();
  target = std::move(source);
  EXPECT_EQ(standin_calls(STANDIN_FREE_VECTOR), 1);
  EXPECT_EQ(standin_calls_total(), 1);
  EXPECT_EQ(standin_live_blocks_total(), before - 2);
  EXPECT_EQ(target, text("new"));
}

TEST_F(DataT, MoveAssignmentToItselfChangesNothing) {
  data_t value = text("same");
  data_t& alias = value;
  value = std::move(alias);
  EXPECT_EQ(value, text("same"));
}

TEST_F(DataT, MoveAssignmentFromItsOwnElement) {
  data_t value = mapOf("outer", mapOf("inner", whole(1)));
  value = std::move(at(value.get<map_t>(), "outer"));
  EXPECT_EQ(value, data_t(mapOf("inner", whole(1))));
}

TEST_F(DataT, MovedFromValueCanBeUsedOn) {
  data_t value = listOf(text("a"));
  const data_t taken(std::move(value));
  value = text("again");
  EXPECT_EQ(value, text("again"));
}

// ---- destruction

TEST_F(DataT, DestructionCallsTheKindsFunctionOnceOrNone) {
  constexpr int NONE = STANDIN_FUNCTIONS;
  constexpr int FREED_BY[] = {NONE,
                              NONE,
                              NONE,
                              NONE,
                              NONE,
                              STANDIN_FREE_STRING,
                              STANDIN_FREE_VECTOR,
                              STANDIN_FREE_MAP,
                              STANDIN_FREE_BUFFER,
                              STANDIN_FREE_CUSTOM,
                              NONE,
                              NONE,
                              NONE};
  for (std::size_t i = 0; i < KINDS.size(); ++i) {
    SCOPED_TRACE(KINDS[i].name);
    {
      const data_t value = KINDS[i].make();
      standin_reset_calls();
    }
    EXPECT_EQ(standin_calls_total(), FREED_BY[i] == NONE ? 0 : 1);
    if (FREED_BY[i] != NONE) {
      EXPECT_EQ(standin_calls(static_cast<standin_function_t>(FREED_BY[i])), 1);
    }
  }
}

TEST_F(DataT, NullBlocksAreDestroyed) {
  for (std::uint32_t tag = 5; tag <= 10; ++tag) {
    const data_t value = tagged(tag);
    EXPECT_FALSE(value.empty()) << tag;
  }
}

TEST_F(DataT, BorrowedStringIsNeverFreed) {
  char owner[] = "mine";
  {
    data_t value = borrowed(owner);
    data_t moved = std::move(value);
    value = std::move(moved);
    EXPECT_EQ(value.type_tag(), 10u);
    EXPECT_EQ(value.get<const char*>(), owner);
  }
  EXPECT_STREQ(owner, "mine");
}

// ---- the host's view

TEST_F(DataT, AdoptedBytesAreOwned) {
  vlt_underlying_data_t raw{};
  raw.value.string = vlt_copy_string("host");
  raw.tag = 5;
  const data_t value = data_t::adopt(raw);
  EXPECT_EQ(value, text("host")); // the fixture finds the block freed
}

TEST_F(DataT, ViewedBytesStayTheHosts) {
  vlt_underlying_data_t raw{};
  raw.value.string = "host";
  raw.tag = 5;
  EXPECT_EQ(data_t::view(raw), text("host"));
  EXPECT_EQ(data_t::view(raw).underlying(), &raw);
}

} // namespace
} // namespace com::velanto::connectivity::test
