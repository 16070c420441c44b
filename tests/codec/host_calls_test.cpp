// The cost of a message in host calls and in the plug-in's own memory, so that neither grows
// unnoticed. When a count falls, change the table; when it rises, ask why.
#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <string>
#include <string_view>

#include "tests/codec/codec_fixture.hpp"
#include "tests/support/allocations.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

// The calls of converting one example, which calls no other host function.
struct calls_t {
  std::string_view kind;
  std::int64_t allocate_map;
  std::int64_t reallocate_map;
  std::int64_t free_map;
  std::int64_t copy_string;
  std::int64_t free_string;
  bool operator==(const calls_t&) const = default;
};

std::ostream& operator<<(std::ostream& out, const calls_t& calls) {
  return out << calls.kind << ": " << calls.allocate_map << " allocate_map, "
             << calls.reallocate_map << " reallocate_map, " << calls.free_map << " free_map, "
             << calls.copy_string << " copy_string, " << calls.free_string << " free_string";
}

// Every event copies keys and values of its type, its channel and its tenant, and the key
// "measurements": 7 copy_string. It frees the payload's table (1 free_map), and key and text of the
// path (2 free_string). Its metadata reuse the table of the notification's metadata. Its fields
// reuse the source's table, if there is one. Besides:
//
//   alarms           14 fields: grown twice. Frees four texts of times and three strings of the
//                    source: the key of its id, and its name's key and text.
//   events           8 fields: grown once. Copies the key firstOccurrenceTime; frees key and text
//                    of the time, and the source's three.
//   measurements     10 fields: grown once. New tables for the series and for a value, whose key
//                    "params" is copied. Frees the fragment's table and key, three texts of times,
//                    and the source's three.
//   managedobjects   17 fields: grown twice. New tables for the fields, the position and the
//                    component that is not a number. Frees that component's table and the
//                    position's. Copies ten names. Frees ten names, key and text of the type, and
//                    the text of a time.
//   operations       7 fields. Frees key and text of the device's id, and the key of the id that
//                    replaces it. Frees the text of a time, and key and text of the source's name.
constexpr std::array EXPECTED = {
    // kind, allocate_map, reallocate_map, free_map, copy_string, free_string
    calls_t{"alarms", 0, 2, 1, 7, 9},       calls_t{"events", 0, 1, 1, 8, 7},
    calls_t{"measurements", 2, 1, 2, 8, 9}, calls_t{"managedobjects", 3, 2, 3, 17, 15},
    calls_t{"operations", 0, 0, 1, 7, 8},
};

class HostCalls : public CodecFixture, public ::testing::WithParamInterface<std::size_t> {
 protected:
  // A codec that writes a tenant and has a link.
  static std::unique_ptr<OstroviaNotifications2Codec> linkedCodec(
      std::vector<std::ptrdiff_t>& sizes) {
    auto codec = codecWith(mapOf("tenantId", text("t1")));
    codec->setNextTowardsHost(std::make_unique<CountingLink>(sizes));
    return codec;
  }
};

TEST_P(HostCalls, MatchTheTable) {
  std::vector<std::ptrdiff_t> sizes;
  const auto codec = linkedCodec(sizes);
  Message message = example(GetParam());
  standin_reset_calls();
  codec->sendBatchTowardsHost(&message, &message + 1);
  const calls_t calls{EXAMPLES[GetParam()].kind,
                      standin_calls(STANDIN_ALLOCATE_MAP),
                      standin_calls(STANDIN_REALLOCATE_MAP),
                      standin_calls(STANDIN_FREE_MAP),
                      standin_calls(STANDIN_COPY_STRING),
                      standin_calls(STANDIN_FREE_STRING)};
  const std::int64_t all = standin_calls_total();
  ASSERT_EQ(sizes, std::vector<std::ptrdiff_t>{1});
  EXPECT_EQ(calls, EXPECTED[GetParam()]);
  EXPECT_EQ(all, calls.allocate_map + calls.reallocate_map + calls.free_map + calls.copy_string +
                     calls.free_string)
      << "nothing is hashed, rendered, logged or deeply copied";
}

TEST_P(HostCalls, OwnMemoryIsTheBuilderAlone) {
  std::vector<std::ptrdiff_t> sizes;
  sizes.reserve(2);
  const auto codec = linkedCodec(sizes);
  Message messages[] = {example(GetParam()), example(GetParam())};
  const std::int64_t before = allocationsMade();
  codec->sendBatchTowardsHost(std::begin(messages), std::end(messages));
  EXPECT_EQ(allocationsMade() - before, 2);
  EXPECT_EQ(sizes, std::vector<std::ptrdiff_t>{2});
}

INSTANTIATE_TEST_SUITE_P(Kinds, HostCalls, ::testing::Range(std::size_t{0}, std::size(EXAMPLES)),
                         [](const auto& kind) { return std::string(EXAMPLES[kind.param].kind); });

using Costs = CodecFixture;

TEST_F(Costs, PassingMessageCostsNothing) {
  const auto codec = CodecFixture::codec();
  Message messages[] = {Message(mapOf("id", text("1")), mapOf("other", text("a/b/alarms/1"))),
                        Message(data_t(), mapOf("pulsarPath", text("a/b/alarms/1")))};
  const std::int64_t before = allocationsMade();
  standin_reset_calls();
  codec->sendBatchTowardsHost(std::begin(messages), std::end(messages));
  codec->sendBatchTowardsTransport(std::begin(messages), std::end(messages));
  EXPECT_EQ(standin_calls_total(), 0);
  EXPECT_EQ(allocationsMade() - before, 0);
}

TEST_F(Costs, NothingIsRenderedBelowTraceLevel) {
  standin_set_log_level(CATEGORY, 5);
  const auto codec = CodecFixture::codec();
  Message message = alarm();
  standin_reset_calls();
  codec->sendBatchTowardsHost(&message, &message + 1);
  EXPECT_EQ(standin_calls(STANDIN_DATA_TO_STRING), 0);
  EXPECT_EQ(standin_calls(STANDIN_LOG_AT), 0);
}

TEST_F(Costs, NothingIsFormattedBelowReportLevel) {
  const auto allocations_of = [](std::size_t id_length, vlt_log_level_t level) {
    standin_set_log_level(CATEGORY, level);
    const auto codec = CodecFixture::codec();
    const std::string id(id_length, 'x');
    Message message = notification("a/b/inventory/1", mapOf("id", text(id.c_str())));
    const std::int64_t before = allocationsMade();
    standin_reset_calls();
    codec->sendBatchTowardsHost(&message, &message + 1);
    EXPECT_EQ(standin_calls(STANDIN_LOG_AT), level == 3 ? 1 : 0);
    return allocationsMade() - before;
  };
  // The stack has room for the shorter line alone.
  EXPECT_EQ(allocations_of(300, 2), allocations_of(600, 2));
  EXPECT_LT(allocations_of(300, 3), allocations_of(600, 3));
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
