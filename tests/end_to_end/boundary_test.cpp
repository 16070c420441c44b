// The effects of an exception that crosses the C interface of the built library.
// ostrovia-check-plugin and tests/misuse/ check mistakes and freedoms of a host.
#include <gtest/gtest.h>

#include <exception>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

using BoundaryTest = EndToEnd;

// A C++ library of the plug-in's own would count its caught exceptions apart, and leave the host's
// count of exceptions under way one too high.
TEST_F(BoundaryTest, LinksExceptionEndsForTheHostToo) {
  LoadedCodec codec(library_, mapOf("tenantId", text("")));
  library_.setNextTowardsHost(codec.plugin(), nullptr,
                              [](void*, vlt_underlying_message_t*, vlt_underlying_message_t*) {
                                throw std::runtime_error("jam");
                              });
  Message message = notification(EVENT_PATH, eventPayload());
  EXPECT_EQ(codec.sendTowardsHost(message), 1);
  EXPECT_EQ(std::uncaught_exceptions(), 0);
  takeLog();
}

} // namespace
} // namespace com::velanto::connectivity::test
