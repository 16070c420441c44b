#include "tools/replay/event_writer.hpp"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <sstream>

#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

class EventWriterTest : public HostFixture {
 protected:
  // Calls the link of `writer` as a plug-in does.
  template <std::size_t Count>
  static void send(tools::EventWriter& writer, std::array<Message, Count>& messages) {
    const tools::link_t link = writer.link();
    auto* const first = reinterpret_cast<vlt_underlying_message_t*>(messages.data());
    link.function(link.handle, first, first + Count);
  }
};

} // namespace

TEST_F(EventWriterTest, EachMessageIsALine) {
  std::ostringstream out;
  tools::EventWriter writer(out);
  std::array<Message, 2> messages = {Message(whole(1)), Message(whole(2))};
  send(writer, messages);
  writer.finishBatch();
  EXPECT_EQ(out.str(), "{\"metadata\":{},\"payload\":1}\n{\"metadata\":{},\"payload\":2}\n");
  EXPECT_EQ(writer.count(), 2u);
  EXPECT_EQ(messages[0].getPayload(), whole(1));
}

TEST_F(EventWriterTest, EmptyBatchWritesNothing) {
  std::ostringstream out;
  tools::EventWriter writer(out);
  const tools::link_t link = writer.link();
  link.function(link.handle, nullptr, nullptr);
  writer.finishBatch();
  EXPECT_EQ(out.str(), "");
}

TEST_F(EventWriterTest, FullDeviceIsReportedWithItsReason) {
  std::ofstream out("/dev/full");
  tools::EventWriter writer(out);
  std::array<Message, 1> messages = {Message(whole(1))};
  send(writer, messages);
  EXPECT_EQ(error_of([&] { writer.finishBatch(); }),
            "cannot write the events: No space left on device");
  EXPECT_EQ(error_of([&] { writer.finishBatch(); }),
            "cannot write the events: No space left on device");
}

TEST_F(EventWriterTest, ExceptionWithinTheLinkWaitsForTheEndOfTheBatch) {
  std::ostringstream out;
  tools::EventWriter writer(out);
  std::array<Message, 1> messages = {Message(decimal(1))};
  standin_fail_allocation(1); // there is no display text
  send(writer, messages);
  standin_fail_allocation(0);
  EXPECT_THROW(writer.finishBatch(), std::logic_error);
  EXPECT_NO_THROW(writer.finishBatch());
}

} // namespace com::velanto::connectivity::test
