// Batches while the host's memory runs out, one allocation later each time: a message whose
// allocation is refused is reported and dropped, the others arrive, and nothing leaks.
#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

class ExhaustedMemoryTest : public EndToEnd {
 protected:
  static std::vector<Message> batchOfTwo() {
    std::vector<Message> batch;
    batch.push_back(notification(EVENT_PATH, eventPayload("1")));
    batch.push_back(notification(MEASUREMENT_PATH, measurementPayload("2")));
    return batch;
  }

  // What the line says about a message that was dropped before or after its id was put aside.
  static bool isReportOf(const log_line_t& reported, const char* id) {
    const std::string why = ": std::bad_alloc";
    return reported == dropped(why) ||
           reported == dropped(" ('id' = '" + std::string(id) + "')" + why);
  }
};

TEST_F(ExhaustedMemoryTest, RefusedAllocationCostsItsOwnMessageOnly) {
  LoadedCodec codec(library_, map_of("tenantId", text("t1")));
  bool second_was_hit = false;
  std::uint64_t n = 1;
  for (bool refused = true; refused; ++n) {
    std::vector<Message> batch = batchOfTwo();
    standin_fail_allocation(n);
    EXPECT_EQ(codec.sendTowardsHost(batch), 0) << n;
    standin_fail_allocation(0);
    refused = standin_failed_allocations() > 0;
    const lines_t lines = takeLog();
    ASSERT_EQ(lines.size(), refused ? 1U : 0U) << n;
    ASSERT_EQ(codec.host.messages.size(), refused ? 1U : 2U) << n;
    const data_t& survivor = at(codec.host.messages[0].getPayload().get<map_t>(), "id");
    if (refused) {
      second_was_hit = survivor == text("1");
      EXPECT_TRUE(isReportOf(lines[0], second_was_hit ? "2" : "1")) << lines[0];
    }
    codec.host.messages.clear();
  }
  EXPECT_TRUE(second_was_hit) << "the failures reach the end of the batch";
  EXPECT_GT(n, 10U);
}

TEST_F(ExhaustedMemoryTest, WithoutAnyMemoryTheBatchIsDroppedAndTheCodecStaysUsable) {
  LoadedCodec codec(library_, map_of("tenantId", text("t1")));
  std::vector<Message> batch = batchOfTwo();
  standin_fail_allocations_from(1);
  EXPECT_EQ(codec.sendTowardsHost(batch), 0);
  standin_fail_allocation(0);
  EXPECT_EQ(codec.host.calls, 1);
  EXPECT_TRUE(codec.host.messages.empty());
  EXPECT_EQ(takeLog(), (lines_t{dropped(" ('id' = '1'): std::bad_alloc"),
                                dropped(" ('id' = '2'): std::bad_alloc")}))
      << "the messages are untouched then, so their ids are still there";
  static_cast<void>(codec.converted(notification(EVENT_PATH, eventPayload())));
}

TEST_F(ExhaustedMemoryTest, FailingTraceLeavesTheMessageUntouched) {
  standin_set_log_level("connectivity.codec.chain", 6);
  LoadedCodec codec(library_, map_of("tenantId", text("t1")));
  Message message = notification(EVENT_PATH, eventPayload("4711"));
  standin_fail_allocation(1);
  EXPECT_EQ(codec.sendTowardsHost(message), 0);
  EXPECT_EQ(standin_failed_allocations(), 1U);
  // A text that the host could not render is a null pointer to the standard library.
  const char* volatile unrendered = nullptr;
  const std::string why = error_of([&] { const std::string text(unrendered); });
  EXPECT_EQ(takeLog(), (lines_t{dropped(" ('id' = '4711'): " + why)}));
  EXPECT_EQ(message.getPayload(), data_t(eventPayload("4711")));
  EXPECT_EQ(message.getMetadataMap(), map_of("pulsarPath", text(EVENT_PATH)));
}

TEST_F(ExhaustedMemoryTest, CreationFailsWithoutLeavingAnything) {
  const data_t settings = map_of("tenantId", text("t1"), "towardsHostChannelPrefix", text("p."),
                                 "measurementSplittingChannel", text("m"));
  void* plugin = nullptr;
  std::uint64_t n = 1;
  for (; plugin == nullptr; ++n) {
    standin_fail_allocation(n);
    const std::int64_t before = standin_live_blocks_total();
    plugin = library_.create("codec", "chain", settings.underlying(), nullptr, nullptr);
    if (plugin != nullptr) break;
    EXPECT_EQ(takeLog(), (lines_t{line(2, "Exception from create: std::bad_alloc")})) << n;
    EXPECT_EQ(standin_live_blocks_total(), before) << n;
  }
  EXPECT_EQ(standin_failed_allocations(), 0U) << "a codec was made although memory was refused";
  standin_fail_allocation(0);
  library_.destroy(plugin);
}

} // namespace
} // namespace com::velanto::connectivity::test
