// Notifications that cannot be converted: the report, the remains of the message, and the rest of the
// batch.
#include <gmock/gmock.h>

#include <cstring>
#include <new>
#include <stdexcept>

#include "tests/codec/codec_fixture.hpp"
#include "tests/support/allocations.hpp"
#include "tests/support/stderr_capture.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Failures : public CodecFixture {
 protected:
  static Message inventory(data_t&& id) {
    return notification("tenantA/sub1/inventory/7", mapOf("id", std::move(id), "a", whole(1)));
  }
};

TEST_F(Failures, NoExceptionInFlightMeansNoReport) {
  Message message(mapOf("id", text("1")));
  const auto codec = CodecFixture::codec();
  EXPECT_FALSE(codec->handleException(message, false));
  EXPECT_FALSE(codec->handleException(message, true));
  EXPECT_THAT(takeLog(), IsEmpty());
}

template <class Exception>
void reportInFlight(OstroviaNotifications2Codec& codec, Message& message, bool towards_transport,
                    const Exception& exception) {
  try {
    throw exception;
  } catch (...) {
    EXPECT_FALSE(codec.handleException(message, towards_transport));
  }
}

TEST_F(Failures, ReportNamesDirectionIdAndCause) {
  const auto codec = CodecFixture::codec();
  Message named(mapOf("id", borrowed("1")));
  Message unnamed(text("id"));
  reportInFlight(*codec, named, true, std::runtime_error("boom"));
  reportInFlight(*codec, named, false, 42);
  reportInFlight(*codec, unnamed, true, 42);
  reportInFlight(*codec, unnamed, false, std::logic_error("oops"));
  EXPECT_THAT(
      takeLog(),
      ElementsAre(line(3, "Error when transforming message towards transport ('id' = '1'): boom"),
                  line(3, "Error when transforming message towards host ('id' = '1')"),
                  line(3, "Error when transforming message towards transport"),
                  line(3, "Error when transforming message towards host: oops")));
}

// A failed message is unchanged, or holds its id alone.
bool isUntouchedOrOnlyItsId(const Message& message, map_t (*example)()) {
  const bool only_id = message.getPayload() == mapOf("id", text("1"));
  return only_id ? message.getMetadataMap().table() == nullptr
                 : message.getPayload() == example() && message.getMetadataMap().size() == 1;
}

TEST_F(Failures, ExhaustedMemoryDropsOnlyOneMessage) {
  const auto codec = CodecFixture::codec();
  std::vector<std::ptrdiff_t> sizes;
  codec->setNextTowardsHost(std::make_unique<CountingLink>(sizes));
  const auto report = dropped(std::string(" ('id' = '1'): ") + std::bad_alloc().what());
  int dropped_alarms = 0;
  int dropped_events = 0;
  for (bool refused = true; refused;) {
    Message batch[] = {alarm(), example(1)};
    standin_fail_allocation(static_cast<std::uint64_t>(dropped_alarms + dropped_events) + 1);
    codec->sendBatchTowardsHost(std::begin(batch), std::end(batch));
    standin_fail_allocation(0);
    refused = standin_failed_allocations() != 0;
    ASSERT_EQ(sizes.back(), refused ? 1 : 2);
    ASSERT_EQ(takeLog(), refused ? std::vector{report} : std::vector<log_line_t>{});
    if (!refused) break;
    const bool alarm_dropped = batch[0].getPayload() == eventFields();
    ASSERT_TRUE(alarm_dropped || batch[0].getPayload() == alarmFields());
    ASSERT_TRUE(isUntouchedOrOnlyItsId(batch[1], alarm_dropped ? alarmExample : eventExample));
    ++(alarm_dropped ? dropped_alarms : dropped_events);
  }
  EXPECT_GT(dropped_alarms, 5);
  EXPECT_GT(dropped_events, 5);
}

TEST_F(Failures, LastingExhaustionDropsAndReportsEveryMessage) {
  const auto codec = CodecFixture::codec();
  std::vector<std::ptrdiff_t> sizes;
  codec->setNextTowardsHost(std::make_unique<CountingLink>(sizes));
  Message batch[] = {alarm(), measurement()};
  standin_fail_allocations_from(1);
  codec->sendBatchTowardsHost(std::begin(batch), std::end(batch));
  standin_fail_allocation(0);
  EXPECT_THAT(sizes, ElementsAre(0));
  const auto report = dropped(std::string(" ('id' = '1'): ") + std::bad_alloc().what());
  EXPECT_THAT(takeLog(), ElementsAre(report, report));
}

// Receives a report without allocating memory.
struct noted_t {
  char text[2048];
};
void note(void* context, const char*, vlt_log_level_t, const char* text) {
  std::strncpy(static_cast<noted_t*>(context)->text, text, sizeof(noted_t) - 1);
}

TEST_F(Failures, UnusuallyLongReportIsCutWithoutMemory) {
  const auto codec = CodecFixture::codec();
  const std::string id(1000, 'x');
  Message message = inventory(text(id.c_str()));
  noted_t noted{};
  standin_set_log_sink(note, &noted);
  try {
    throw std::runtime_error("boom");
  } catch (const std::exception&) {
    const NoMemory none;
    EXPECT_FALSE(codec->handleException(message, false));
  }
  const std::string whole = dropped(" ('id' = '" + id + "'): boom").text;
  const std::string label = std::string("<") + CATEGORY + "> ";
  EXPECT_EQ(noted.text, whole.substr(0, label.size() + 511));
  reportInFlight(*codec, message, false, std::runtime_error("boom"));
  EXPECT_EQ(noted.text, whole);
  standin_set_log_sink(nullptr, nullptr);
}

TEST_F(Failures, WithoutMemoryTheFaultIsStillReported) {
  for (const bool has_id : {true, false}) {
    const auto codec = CodecFixture::codec();
    Message message = notification("a/b/alarms/1", has_id ? mapOf("id", text("1")) : mapOf());
    standin_fail_allocations_from(1);
    codec->sendBatchTowardsHost(&message, &message + 1);
    standin_fail_allocation(0);
    EXPECT_THAT(takeLog(), ElementsAre(dropped(std::string(has_id ? " ('id' = '1')" : "") +
                                               ": Required key 'source' missing from message "
                                               "payload")));
    EXPECT_EQ(message.getPayload(), has_id ? data_t(mapOf("id", text("1"))) : data_t());
    EXPECT_EQ(message.getMetadataMap().table(), nullptr);
  }
}

TEST_F(Failures, TakenIdIsLostWithoutMemory) {
  const auto codec = CodecFixture::codec();
  Message message = alarm();
  standin_fail_allocations_from(2); // the first one is the event's type
  codec->sendBatchTowardsHost(&message, &message + 1);
  standin_fail_allocation(0);
  EXPECT_THAT(takeLog(), ElementsAre(dropped(" ('id' = '1'): std::bad_alloc")));
  EXPECT_TRUE(message.getPayload().empty());
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
