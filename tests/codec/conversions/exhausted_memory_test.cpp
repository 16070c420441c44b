// Conversions when memory runs out: any failing allocation ends in std::bad_alloc, and nothing leaks.
#include "tests/codec/examples.hpp"
#include "tests/support/failing_allocations.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class ExhaustedMemory : public HostFixture, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(ExhaustedMemory, IsBadAllocAndLeaksNothing) {
  const example_t& example = EXAMPLES[GetParam()];
  const std::int64_t live_before = standin_live_blocks_total();
  map_t payload = example.payload();
  Message event;
  const auto attempt = [&] { event = converted(example.convert, std::move(payload)); };
  const auto verify = [&] {
    EXPECT_TRUE(event.getPayload().empty() || same(event.getPayload(), example.fields()));
    event = Message();
    EXPECT_EQ(standin_live_blocks_total(), live_before);
    payload = example.payload();
  };
  const std::uint64_t failures = failEachAllocation(attempt, verify);
  // Key and value of the event's type, "measurements", and at least one table.
  EXPECT_GE(failures, 4U);
}

INSTANTIATE_TEST_SUITE_P(Kinds, ExhaustedMemory,
                         ::testing::Range(std::size_t{0}, std::size(EXAMPLES)),
                         [](const auto& kind) { return std::string(EXAMPLES[kind.param].kind); });

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
