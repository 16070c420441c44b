// Values nested a million deep, on a stack that has room for a few hundred calls.
#include "host/storage.h"

#include <utility>

#include "tests/standin/values.hpp"
#include "tests/support/small_stack.hpp"

namespace standin::test {
namespace {

using com::velanto::connectivity::test::runOnSmallStack;

constexpr int DEPTH = 1'000'000;

data_t listOf(const data_t& inner) { return list({inner}); }
data_t valueOf(const data_t& inner) { return map(tableOf(1, {{0, 5, integer(1), inner}})); }
data_t keyOf(const data_t& inner) { return map(tableOf(1, {{0, 5, inner, integer(1)}})); }

// One level of nesting, and the text around its content.
struct nesting_t {
  const char* name;
  data_t (*around)(const data_t& inner);
  const char* before;
  const char* after;
};

constexpr nesting_t LISTS{"lists", listOf, "[", "]"};
constexpr nesting_t VALUES{"values", valueOf, "{1: ", "}"};
constexpr nesting_t KEYS{"keys", keyOf, "{", ": 1}"};

// The three kinds of level in turn, or one of them only.
struct case_t {
  const char* name;
  nesting_t levels[3];
};

class DeepNesting : public testing::TestWithParam<case_t> {
 protected:
  void SetUp() override {
    for (int i = 0; i < DEPTH; ++i) value_ = GetParam().levels[i % 3].around(value_);
  }

  void TearDown() override { EXPECT_EQ(standin_live_blocks_total(), before_); }

  std::string text() const {
    std::string before;
    std::string after;
    for (int i = 0; i < DEPTH; ++i) {
      before += GetParam().levels[(DEPTH - 1 - i) % 3].before;
      after += GetParam().levels[i % 3].after;
    }
    return before + "7" + after;
  }

  const int64_t before_ = standin_live_blocks_total();
  data_t value_ = integer(7);
};

TEST_P(DeepNesting, IsFreedOnASmallStack) {
  runOnSmallStack([this] { freeData(value_); });
}

TEST_P(DeepNesting, IsCopiedOnASmallStack) {
  data_t copy = empty();
  runOnSmallStack([&] { copy = vlt_copy_data(&value_); });
  EXPECT_EQ(standin_live_blocks_total() - before_, 2 * DEPTH);
  freeData(value_);
  EXPECT_TRUE(rendered(copy) == text()) << "the copy differs";
  freeData(copy);
}

TEST_P(DeepNesting, PartialCopyIsFreedOnASmallStack) {
  data_t copy = integer(1);
  standin_fail_allocation(DEPTH);
  runOnSmallStack([&] { copy = vlt_copy_data(&value_); });
  EXPECT_EQ(standin_failed_allocations(), 1U);
  EXPECT_EQ(copy.tag, uint32_t{VLT_TAG_EMPTY});
  EXPECT_EQ(standin_live_blocks_total() - before_, DEPTH);
  freeData(value_);
}

TEST_P(DeepNesting, IsRenderedOnASmallStack) {
  data_t rendering = empty();
  runOnSmallStack([&] { rendering = vlt_data_to_string(&value_); });
  EXPECT_TRUE(rendering.value.string == text()) << "the text differs";
  freeData(rendering);
  freeData(value_);
}

INSTANTIATE_TEST_SUITE_P(Kinds, DeepNesting,
                         testing::Values(case_t{"Lists", {LISTS, LISTS, LISTS}},
                                         case_t{"MapValues", {VALUES, VALUES, VALUES}},
                                         case_t{"MapKeys", {KEYS, KEYS, KEYS}},
                                         case_t{"Mixed", {LISTS, VALUES, KEYS}}),
                         [](const auto& named) { return named.param.name; });

} // namespace
} // namespace standin::test
