// Values nested a million deep in a field that no conversion looks into: they pass on a small stack.
#include <gtest/gtest.h>

#include "host/storage.h"
#include "tests/end_to_end/loaded_codec.hpp"
#include "tests/support/small_stack.hpp"

namespace com::velanto::connectivity::test {
namespace {

constexpr int DEPTH = 1'000'000;

vlt_underlying_data_t listAround(const vlt_underlying_data_t& inner) {
  vlt_underlying_data_t outer{};
  outer.tag = VLT_TAG_LIST;
  outer.value.list = standin_make_list(1, 1);
  *reinterpret_cast<vlt_underlying_data_t*>(outer.value.list + 1) = inner;
  return outer;
}

// The key's hash does not matter: nothing is looked up in there.
vlt_underlying_data_t mapAround(const vlt_underlying_data_t& inner) {
  vlt_underlying_data_t outer{};
  outer.tag = VLT_TAG_MAP;
  outer.value.map = vlt_allocate_map(1);
  outer.value.map->live = 1;
  auto& slot = *reinterpret_cast<vlt_underlying_map_table_entry_t*>(outer.value.map + 1);
  slot.hash = 5;
  slot.key.tag = VLT_TAG_BOOLEAN;
  slot.value = inner;
  return outer;
}

// Lists and maps in turn; made from the inside out, since any other way needs the stack.
data_t nested() {
  vlt_underlying_data_t value{};
  for (int i = 0; i < DEPTH; ++i) value = i % 2 == 0 ? listAround(value) : mapAround(value);
  return data_t::adopt(value);
}

class DeepNestingTest : public EndToEnd {
 protected:
  // Sends one notification on a small stack, where its rest is freed as well.
  void send(const char* path, LoadedCodec& codec) {
    map_t payload = eventPayload("4711");
    payload[text("o6a_Deep")] = nested();
    Message message = notification(path, std::move(payload));
    run_on_small_stack([&] {
      codec.sendTowardsHost(message);
      const Message rest = std::move(message);
    });
  }
  // Destroys what has arrived on a small stack.
  static void discard(Received& received) {
    run_on_small_stack([&] { received.messages.clear(); });
  }

  const std::int64_t before_ = standin_live_blocks_total();
};

TEST_F(DeepNestingTest, PassesInAnUntouchedField) {
  LoadedCodec codec(library_, map_of("tenantId", text("t1")));
  send(EVENT_PATH, codec);
  EXPECT_EQ(takeLog(), lines_t{});
  ASSERT_EQ(codec.host.messages.size(), 1U);
  const data_t& deep = at(codec.host.messages[0].getPayload().get<map_t>(), "o6a_Deep");
  EXPECT_EQ(deep.type_tag(), std::uint32_t{VLT_TAG_MAP});
  EXPECT_GT(standin_live_blocks_total() - before_, DEPTH);
  discard(codec.host);
}

TEST_F(DeepNestingTest, IsNotCopiedOnTheWay) {
  LoadedCodec codec(library_, map_of("tenantId", text("t1")));
  map_t payload = eventPayload("4711");
  payload[text("o6a_Deep")] = nested();
  const vlt_underlying_map_table_t* const table = at(payload, "o6a_Deep").get<map_t>().table();
  Message message = notification(EVENT_PATH, std::move(payload));
  run_on_small_stack([&] { codec.sendTowardsHost(message); });
  ASSERT_EQ(codec.host.messages.size(), 1U);
  auto& fields = codec.host.messages[0].getPayload().get<map_t>();
  EXPECT_EQ(at(fields, "o6a_Deep").get<map_t>().table(), table);
  discard(codec.host);
}

TEST_F(DeepNestingTest, IsFreedWhenItsMessageIsDropped) {
  LoadedCodec codec(library_, map_of("tenantId", text("t1")));
  send(UNKNOWN_PATH, codec);
  EXPECT_EQ(takeLog(), (lines_t{dropped(" ('id' = '4711'): Unrecognised Pulsar message type: "
                                        "'inventory'")}));
  EXPECT_TRUE(codec.host.messages.empty());
  EXPECT_LT(standin_live_blocks_total() - before_, 1000);
}

TEST_F(DeepNestingTest, IsTracedOnASmallStack) {
  standin_set_log_level("connectivity.codec.chain", 6);
  LoadedCodec codec(library_, map_of("tenantId", text("t1")));
  send(EVENT_PATH, codec);
  EXPECT_EQ(takeLog().size(), 1U);
  EXPECT_EQ(codec.host.messages.size(), 1U);
  discard(codec.host);
}

} // namespace
} // namespace com::velanto::connectivity::test
