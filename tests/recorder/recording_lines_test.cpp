#include "recorder/recording_lines.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <string>

namespace com::velanto::connectivity::test {
namespace {

using namespace recorder;

constexpr std::uint64_t HIGHEST = std::numeric_limits<std::uint64_t>::max();

// What `write` leaves in memory of `size` bytes.
template <class Write>
std::string written(std::size_t size, const Write& write) {
  std::string memory(size, '#');
  memory.resize(static_cast<std::size_t>(write(memory.data()) - memory.data()));
  return memory;
}

TEST(RecordingLinesTest, TimeIsNanosecondsOfTheEpoch) {
  const auto now = [] {
    return static_cast<std::uint64_t>(
        std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count());
  };
  const std::uint64_t before = now();
  const std::uint64_t time = timeNow();
  EXPECT_LE(before, time);
  EXPECT_LE(time, now());
}

TEST(RecordingLinesTest, RemarkIsTheFirstMember) {
  const remark_t remark{1715659331482000000, 18, 7, 1, 2, Direction::TRANSPORT};
  EXPECT_EQ(written(REMARK_SIZE, [&](char* at) { return writeRemark(at, remark); }),
            R"({"recorded":{"time":1715659331482000000,"number":18,"batch":7,"place":1,"of":2,)"
            R"("direction":"transport"},)");
}

TEST(RecordingLinesTest, GapNamesItsMessagesAndReason) {
  EXPECT_EQ(written(GAP_SIZE,
                    [](char* at) {
                      return writeGap(at, {19, 25, 6, "buffer"});
                    }),
            R"({"recording":{"gap":{"first":19,"last":25,"lost":6,"reason":"buffer"}}})"
            "\n");
}

TEST(RecordingLinesTest, FootHasTheCounts) {
  const counts_t counts{24, 10, 8, 6};
  EXPECT_EQ(written(FOOT_SIZE, [&](char* at) { return writeFoot(at, 99, counts, false); }),
            R"({"recording":{"foot":{"ended":99,"seen":24,"recorded":10,"filtered":8,"lost":6}}})"
            "\n");
  EXPECT_EQ(written(FOOT_SIZE, [&](char* at) { return writeFoot(at, 99, counts, true); }),
            R"({"recording":{"foot":{"ended":99,"seen":24,"recorded":10,"filtered":8,"lost":6,)"
            R"("next":true}}})"
            "\n");
}

TEST(RecordingLinesTest, LongestLinesFitTheirSizes) {
  const remark_t remark{HIGHEST, HIGHEST, HIGHEST, HIGHEST, HIGHEST, Direction::TRANSPORT};
  EXPECT_LE(written(1000, [&](char* at) { return writeRemark(at, remark); }).size(), REMARK_SIZE);
  const gap_t gap{HIGHEST, HIGHEST, HIGHEST, "message"};
  EXPECT_LE(written(1000, [&](char* at) { return writeGap(at, gap); }).size(), GAP_SIZE);
  const counts_t counts{HIGHEST, HIGHEST, HIGHEST, HIGHEST};
  EXPECT_LE(written(1000, [&](char* at) { return writeFoot(at, HIGHEST, counts, true); }).size(),
            FOOT_SIZE);
}

TEST(RecordingLinesTest, GapGrowsByLaterMessages) {
  gap_t gap;
  gap.add({5, 5, 1, "buffer"});
  gap.add({8, 9, 2, "disk"});
  EXPECT_EQ(gap.first, 5U);
  EXPECT_EQ(gap.last, 9U);
  EXPECT_EQ(gap.lost, 3U);
  EXPECT_STREQ(gap.reason, "buffer");
}

TEST(RecordingLinesTest, PassageCountsMessagesAndGaps) {
  const passage_t passage = readPassage(
      "{\"recording\":{\"head\":{\"file\":1}}}\n"
      "{\"recording\":{\"gap\":{\"first\":3,\"last\":6,\"lost\":2,\"reason\":\"disk\"}}}\n"
      "{\"recorded\":{\"time\":1,\"number\":8,\"batch\":1},\"metadata\":{}}\n"
      "{\"recorded\":{\"time\":1,\"number\":9,\"batch\":1},\"metadata\":{}}\n");
  EXPECT_EQ(passage.first, 3U);
  EXPECT_EQ(passage.last, 9U);
  EXPECT_EQ(passage.recorded, 2U);
  EXPECT_EQ(passage.lost, 2U);
  EXPECT_EQ(readPassage("").first, 0U);
  EXPECT_EQ(readPassage("{\"recorded\":{").recorded, 1U) << "a line without its end and number";
}

} // namespace
} // namespace com::velanto::connectivity::test
