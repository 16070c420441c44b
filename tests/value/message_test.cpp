// A message is two fields that move together, in the 24 bytes that hosts lay side by side.
#include "value/message.hpp"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {
namespace {

static_assert(sizeof(Message) == 24);
static_assert(std::is_nothrow_move_constructible_v<Message>);
static_assert(std::is_nothrow_move_assignable_v<Message>);
static_assert(!std::is_copy_constructible_v<Message>);

class MessageTest : public HostFixture {
 protected:
  static Message sample() { return Message(listOf(text("p")), mapOf("m", text("v"))); }
  static void expect_sample(const Message& message) {
    EXPECT_EQ(message.getPayload(), listOf(text("p")));
    EXPECT_TRUE(message.getMetadataMap() == mapOf("m", text("v")));
  }
  static void expect_nothing(const Message& message) {
    EXPECT_TRUE(message.getPayload().empty());
    EXPECT_EQ(message.getMetadataMap().table(), nullptr);
  }
};

TEST_F(MessageTest, PayloadComesFirstMetadataAtTheSixteenthByte) {
  const Message message = sample();
  vlt_underlying_message_t raw{};
  std::memcpy(&raw, static_cast<const void*>(&message), sizeof raw);
  EXPECT_EQ(static_cast<const void*>(&message.getPayload()), &message);
  EXPECT_EQ(raw.payload.tag, 6u);
  EXPECT_EQ(raw.metadata, message.getMetadataMap().table());
}

TEST_F(MessageTest, DefaultHoldsNothing) { expect_nothing(Message()); }

TEST_F(MessageTest, MetadataIsOptional) {
  const Message message(whole(1));
  EXPECT_EQ(message.getPayload(), whole(1));
  EXPECT_EQ(message.getMetadataMap().table(), nullptr);
}

TEST_F(MessageTest, ConstructionMovesBothIn) {
  data_t payload = text("p");
  map_t metadata = mapOf("m", whole(1));
  const void* const table = metadata.table();
  standin_reset_calls();
  const Message message(std::move(payload), std::move(metadata));
  EXPECT_EQ(standin_calls_total(), 0);
  EXPECT_TRUE(payload.empty());
  EXPECT_EQ(metadata.table(), nullptr);
  EXPECT_EQ(message.getMetadataMap().table(), table);
}

TEST_F(MessageTest, AccessorsReachTheFields) {
  Message message = sample();
  message.getPayload() = whole(2);
  message.getMetadataMap()[text("n")] = whole(3);
  const Message& constant = message;
  EXPECT_EQ(&constant.getPayload(), &message.getPayload());
  EXPECT_EQ(&constant.getMetadataMap(), &message.getMetadataMap());
  EXPECT_EQ(constant.getPayload(), whole(2));
  EXPECT_EQ(constant.getMetadataMap().size(), 2u);
}

TEST_F(MessageTest, MoveConstructionEmptiesTheSource) {
  Message source = sample();
  standin_reset_calls();
  const Message target(std::move(source));
  EXPECT_EQ(standin_calls_total(), 0);
  expect_sample(target);
  expect_nothing(source);
}

TEST_F(MessageTest, MovedFromMessageCanBeUsedOn) {
  Message source = sample();
  const Message target(std::move(source));
  source.getPayload() = whole(1);
  source.getMetadataMap()[text("k")] = whole(2);
  EXPECT_EQ(source.getPayload(), whole(1));
  EXPECT_TRUE(source.getMetadataMap() == mapOf("k", whole(2)));
}

TEST_F(MessageTest, MoveAssignmentFreesTheOldContent) {
  Message source = sample();
  Message target(listOf(whole(1)), mapOf("old", whole(2)));
  standin_reset_calls();
  target = std::move(source);
  EXPECT_EQ(standin_calls(STANDIN_FREE_VECTOR), 1);
  EXPECT_EQ(standin_calls(STANDIN_FREE_MAP), 1);
  EXPECT_EQ(standin_calls_total(), 2);
  expect_sample(target);
  expect_nothing(source);
}

TEST_F(MessageTest, MoveAssignmentToItselfChangesNothing) {
  Message message = sample();
  Message& alias = message;
  message = std::move(alias);
  expect_sample(message);
}

TEST_F(MessageTest, SwapExchangesBothFieldsWithoutAHostCall) {
  Message left = sample();
  Message right(whole(1));
  standin_reset_calls();
  std::swap(left, right);
  EXPECT_EQ(standin_calls_total(), 0);
  expect_sample(right);
  EXPECT_EQ(left.getPayload(), whole(1));
  EXPECT_EQ(left.getMetadataMap().table(), nullptr);
}

} // namespace
} // namespace com::velanto::connectivity::test
