// Links to C functions of the host: the handle and the range go through unread.
#include "plugin/remote_sides.hpp"

#include <memory>
#include <stdexcept>

#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {
namespace {

struct call_t {
  void* handle;
  vlt_underlying_message_t* start;
  vlt_underlying_message_t* end;
};
std::vector<call_t> calls;

void record(void* handle, vlt_underlying_message_t* start, vlt_underlying_message_t* end) {
  calls.push_back({handle, start, end});
}

void fail(void*, vlt_underlying_message_t*, vlt_underlying_message_t*) {
  throw std::runtime_error("boom");
}

// Each test runs once towards the host and once towards the transport.
struct TowardsHost {
  using Side = RemoteHostSide;
  static void send(Side& side, Message* start, Message* end) {
    side.sendBatchTowardsHost(start, end);
  }
};
struct TowardsTransport {
  using Side = RemoteTransportSide;
  static void send(Side& side, Message* start, Message* end) {
    side.sendBatchTowardsTransport(start, end);
  }
};

template <class Direction>
class RemoteSidesTest : public HostFixture {
 protected:
  RemoteSidesTest() { calls.clear(); }
};
using Directions = ::testing::Types<TowardsHost, TowardsTransport>;
TYPED_TEST_SUITE(RemoteSidesTest, Directions);

void* const UNREADABLE_HANDLE = unreadable(1);

TYPED_TEST(RemoteSidesTest, CallsTheFunctionWithHandleAndRange) {
  typename TypeParam::Side side(UNREADABLE_HANDLE, record);
  Message messages[2];
  TypeParam::send(side, messages, messages + 2);
  ASSERT_EQ(calls.size(), 1U);
  EXPECT_EQ(calls[0].handle, UNREADABLE_HANDLE);
  EXPECT_EQ(static_cast<void*>(calls[0].start), messages);
  EXPECT_EQ(static_cast<void*>(calls[0].end), messages + 2);
}

TYPED_TEST(RemoteSidesTest, NullRangeAndNullHandleGoThrough) {
  typename TypeParam::Side side(nullptr, record);
  TypeParam::send(side, nullptr, nullptr);
  ASSERT_EQ(calls.size(), 1U);
  EXPECT_EQ(calls[0].handle, nullptr);
  EXPECT_EQ(calls[0].start, nullptr);
  EXPECT_EQ(calls[0].end, nullptr);
}

TYPED_TEST(RemoteSidesTest, NothingElseHappensWhenSendingOrDestroying) {
  standin_reset_calls();
  {
    auto side = std::make_unique<typename TypeParam::Side>(UNREADABLE_HANDLE, record);
    Message message(whole(1));
    TypeParam::send(*side, &message, &message + 1);
    side.reset();
    EXPECT_EQ(message.getPayload(), whole(1));
  }
  EXPECT_EQ(calls.size(), 1U);
  EXPECT_EQ(standin_calls_total(), 0);
}

TYPED_TEST(RemoteSidesTest, NullFunctionIsRefused) {
  EXPECT_EQ(errorOf([] { const typename TypeParam::Side side(UNREADABLE_HANDLE, nullptr); }),
            "Cannot use a null batch function as a link");
}

TYPED_TEST(RemoteSidesTest, ExceptionsOfTheFunctionPassThrough) {
  typename TypeParam::Side side(nullptr, fail);
  EXPECT_EQ(errorOf([&] { TypeParam::send(side, nullptr, nullptr); }), "boom");
}

} // namespace
} // namespace com::velanto::connectivity::test
