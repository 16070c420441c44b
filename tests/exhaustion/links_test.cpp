// Links that are set without memory, and lifecycle calls, which need none.
#include <gtest/gtest.h>

#include "tests/exhaustion/exhaustion_fixture.hpp"

namespace com::velanto::connectivity::test {
namespace {

constexpr exhaustion_t ONE_OF_ITS_OWN = EXHAUSTIONS[2];
constexpr exhaustion_t ITS_OWN_FOR_GOOD = EXHAUSTIONS[3];

class ExhaustedLinks : public ExhaustionFixture {
 public:
  ~ExhaustedLinks() override { library_.destroy(codec_); }

 protected:
  ExhaustedLinks() {
    codec_ = create(mapOf("tenantId", text("t1")));
    library_.setNextTowardsHost(codec_, &previous_, count);
    library_.setNextTowardsTransport(codec_, &previous_, count);
  }

  static void count(void* handle, vlt_underlying_message_t*, vlt_underlying_message_t*) {
    ++*static_cast<int*>(handle);
  }

  void* codec_ = nullptr;
  int previous_ = 0;
  int next_ = 0;
};

TEST_F(ExhaustedLinks, AreRefusedAndThePreviousOnesStay) {
  const std::string category = label().substr(1, label().size() - 3);
  const held_t before;
  int host = 0;
  int transport = 0;
  {
    const Exhausted exhausted(ONE_OF_ITS_OWN, 1);
    host = library_.setNextTowardsHost(codec_, &next_, count);
  }
  {
    const Exhausted exhausted(ONE_OF_ITS_OWN, 1);
    transport = library_.setNextTowardsTransport(codec_, &next_, count);
  }
  EXPECT_EQ(host, 1);
  EXPECT_EQ(transport, 1);
  EXPECT_EQ(
      takeLines(),
      (lines_t{{category, 2, label() + "Exception from setNextTowardsHost: std::bad_alloc"},
               {category, 2, label() + "Exception from setNextTowardsTransport: std::bad_alloc"}}));
  library_.sendBatchTowardsHost(codec_, nullptr, nullptr);
  library_.sendBatchTowardsTransport(codec_, nullptr, nullptr);
  EXPECT_EQ(previous_, 2);
  EXPECT_EQ(next_, 0);
  EXPECT_EQ(held_t(), before);
}

TEST_F(ExhaustedLinks, LifecycleNeedsNoMemory) {
  int failures = 0;
  {
    const Exhausted exhausted(ITS_OWN_FOR_GOOD, 1);
    standin_fail_allocations_from(1);
    for (const auto call : {library_.start, library_.hostReady, library_.shutdown}) {
      failures += call(codec_);
    }
    failures += library_.sendBatchTowardsHost(codec_, nullptr, nullptr);
    failures += library_.destroy(std::exchange(codec_, nullptr));
  }
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(refusedAllocations() + standin_failed_allocations(), 0U);
}

} // namespace
} // namespace com::velanto::connectivity::test
