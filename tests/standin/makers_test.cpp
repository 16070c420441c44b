// Blocks of the kinds that the host's interface does not make.
#include "standin/standin.h"

#include <limits>

#include "tests/standin/values.hpp"

namespace standin::test {
namespace {

using Makers = Blocks;

TEST_F(Makers, ListHasEmptyElementsAndRoom) {
  vlt_underlying_vector_t* made = standin_make_list(2, 5);
  EXPECT_EQ(made->count, 2);
  EXPECT_EQ(made->capacity, 5);
  for (int64_t i = 0; i < 5; ++i) EXPECT_EQ(elementsOf(made)[i].tag, uint32_t{VLT_TAG_EMPTY});
  vlt_free_vector(made);
}

TEST_F(Makers, ListOfImpossibleSizeIsRefused) {
  EXPECT_EQ(standin_make_list(-1, 1), nullptr);
  EXPECT_EQ(standin_make_list(2, 1), nullptr);
  EXPECT_EQ(standin_make_list(0, std::numeric_limits<int64_t>::max()), nullptr);
}

TEST_F(Makers, BufferHoldsZeroBytes) {
  vlt_underlying_buffer_t* made = standin_make_buffer(3);
  EXPECT_EQ(made->length, 3U);
  EXPECT_EQ(std::memcmp(bytesOf(made), "\0\0\0", 3), 0);
  vlt_free_buffer(made);
}

TEST_F(Makers, CustomObjectTellsItsLabel) {
  const vlt_underlying_custom_t made = standin_make_custom(0xffffffffffffffff);
  EXPECT_EQ(standin_custom_label(made), 0xffffffffffffffff);
  EXPECT_EQ(standin_custom_label({nullptr}), 0U);
  vlt_free_custom(made);
}

} // namespace
} // namespace standin::test
