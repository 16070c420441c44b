// The text of an id, kept for the report.
#include "codec/id_for_report.hpp"

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "tests/support/allocations.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

using IdForReportTest = HostFixture;

TEST_F(IdForReportTest, TextOutlivesThePayloadWithoutTheHost) {
  // Around the length up to which a text takes no memory.
  for (const std::size_t length : {0U, 1U, 62U, 63U, 64U, 65U, 1000U}) {
    const std::string name(length, 'x');
    map_t payload = map_of("id", text(name.c_str()));
    standin_reset_calls();
    const std::int64_t before = allocationsMade();
    const IdForReport id(payload);
    EXPECT_EQ(allocationsMade() - before, length < 64 ? 0 : 1) << length;
    EXPECT_EQ(standin_calls_total(), 0);
    payload = map_t();
    EXPECT_EQ(id.text(), name);
  }
}

TEST_F(IdForReportTest, NullTextReadsAsTheEmptyOne) {
  EXPECT_STREQ(IdForReport(map_of("id", null_text())).text(), "");
}

TEST_F(IdForReportTest, OtherKindsAreNoId) {
  EXPECT_EQ(IdForReport(map_of("id", whole(4711))).text(), nullptr);
  EXPECT_EQ(IdForReport(map_of("name", text("id"))).text(), nullptr);
}

TEST_F(IdForReportTest, LongTextWithoutMemoryIsBadAlloc) {
  const map_t payload = map_of("id", text(std::string(1000, 'x').c_str()));
  const NoMemory none;
  EXPECT_THROW(IdForReport{payload}, std::bad_alloc);
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
