// What is left in a message whose conversion failed.
#include "codec/id_for_report.hpp"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

using IdForReportTest = HostFixture;

TEST_F(IdForReportTest, FailureLeavesAMapWithACopyOfTheIdAlone) {
  // Around the length up to which a text is kept without the host.
  for (const std::size_t length : {0U, 1U, 62U, 63U, 64U, 65U, 1000U}) {
    Message message;
    {
      const std::string name(length, 'x');
      const data_t id = text(name.c_str());
      const IdForReport report(&id, message);
    }
    EXPECT_EQ(message.getPayload(), data_t(map_of("id", text(std::string(length, 'x').c_str()))));
    EXPECT_EQ(message.getMetadataMap().table(), nullptr);
  }
}

TEST_F(IdForReportTest, BorrowedIdIsLeftAsAnOwnedOne) {
  Message message;
  {
    const data_t id = borrowed("4711");
    const IdForReport report(&id, message);
  }
  EXPECT_EQ(message.getPayload(), data_t(map_of("id", text("4711"))));
}

TEST_F(IdForReportTest, NullTextStaysOne) {
  Message message;
  {
    const data_t id = null_text();
    const IdForReport report(&id, message);
  }
  const data_t& id = at(message.getPayload().get<map_t>(), "id");
  EXPECT_EQ(id.type_tag(), VLT_TAG_STRING);
  EXPECT_EQ(id.get<const char*>(), nullptr);
}

TEST_F(IdForReportTest, NothingIsLeftWithoutAnId) {
  Message message;
  { const IdForReport report(nullptr, message); }
  EXPECT_TRUE(message.getPayload().empty());
}

TEST_F(IdForReportTest, MessageThatWasConvertedIsLeftAlone) {
  Message message(text("event"));
  for (const std::size_t length : {1U, 100U}) {
    const data_t id = text(std::string(length, 'x').c_str());
    IdForReport report(&id, message);
    report.converted();
  }
  EXPECT_EQ(message.getPayload(), text("event"));
}

TEST_F(IdForReportTest, UsualIdCostsNoCallOfTheHost) {
  Message message;
  const data_t id = text("4711");
  standin_reset_calls();
  {
    IdForReport report(&id, message);
    report.converted();
  }
  EXPECT_EQ(standin_calls_total(), 0);
}

TEST_F(IdForReportTest, WithoutMemoryTheMessageIsLeftEmpty) {
  // The map's table, its key and the text.
  for (const std::uint64_t n : {1U, 2U, 3U}) {
    Message message;
    const data_t id = text("4711");
    {
      const IdForReport report(&id, message);
      standin_fail_allocation(n);
    }
    EXPECT_EQ(standin_failed_allocations(), 1U) << n;
    standin_fail_allocation(0);
    EXPECT_TRUE(message.getPayload().empty()) << n;
  }
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
