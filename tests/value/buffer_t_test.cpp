// A buffer reads the host's block in place and owns it.
#include "value/buffer_t.hpp"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/host_fixture.hpp"

namespace com::velanto::connectivity::test {
namespace {

static_assert(sizeof(buffer_t) == sizeof(void*));

using BufferT = HostFixture;

buffer_t buffer_with(const char* content) {
  const auto length = static_cast<std::uint32_t>(std::strlen(content));
  vlt_underlying_buffer_t* const block = standin_make_buffer(length);
  std::memcpy(reinterpret_cast<unsigned char*>(block) + 8, content, length);
  buffer_t buffer(block);
  return buffer;
}

TEST_F(BufferT, DefaultHasNoBytes) { EXPECT_EQ(buffer_t().size(), 0u); }

TEST_F(BufferT, BytesStartAtTheBlocksEighthByte) {
  const buffer_t buffer = buffer_with("abc");
  ASSERT_EQ(buffer.size(), 3u);
  EXPECT_EQ(std::memcmp(buffer.data(), "abc", 3), 0);
}

TEST_F(BufferT, MoveLeavesTheSourceNull) {
  buffer_t source = buffer_with("abc");
  const unsigned char* const data = source.data();
  standin_reset_calls();
  const buffer_t target(std::move(source));
  EXPECT_EQ(standin_calls_total(), 0);
  EXPECT_EQ(source.size(), 0u);
  EXPECT_EQ(target.data(), data);
}

TEST_F(BufferT, MoveAssignmentFreesTheTargetsBlock) {
  buffer_t source = buffer_with("new");
  buffer_t target = buffer_with("older");
  standin_reset_calls();
  target = std::move(source);
  EXPECT_EQ(standin_calls(STANDIN_FREE_BUFFER), 1);
  EXPECT_EQ(standin_calls_total(), 1);
  EXPECT_EQ(target.size(), 3u);
  EXPECT_EQ(source.size(), 0u);
}

TEST_F(BufferT, MoveAssignmentToItselfKeepsTheBytes) {
  buffer_t buffer = buffer_with("abc");
  buffer_t& alias = buffer;
  buffer = std::move(alias);
  EXPECT_EQ(buffer.size(), 3u);
}

TEST_F(BufferT, DestructionFreesTheBlock) {
  {
    const buffer_t buffer = buffer_with("abc");
    standin_reset_calls();
  }
  EXPECT_EQ(standin_calls(STANDIN_FREE_BUFFER), 1);
}

} // namespace
} // namespace com::velanto::connectivity::test
