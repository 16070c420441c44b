// One codec that several threads send batches through: its fields and the constants are only read.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <vector>

#include "tests/support/host_fixture.hpp"
#include "tests/threads/parallel.hpp"

namespace com::velanto::connectivity::test {
namespace {

class SharedCodec : private LibraryAndSamples, public HostFixture {
 public:
  ~SharedCodec() override { library_.destroy(codec_); }

 protected:
  SharedCodec() {
    standin_set_default_log_level(6);
    const data_t settings = mapOf("tenantId", text("t1"));
    codec_ = library_.create("codec", "chain", settings.underlying(), nullptr, nullptr);
    library_.setNextTowardsHost(codec_, &kept_, count);
  }

  // A link for several threads at once.
  static void count(void* handle, vlt_underlying_message_t* start, vlt_underlying_message_t* end) {
    *static_cast<std::atomic<std::ptrdiff_t>*>(handle) += end - start;
  }

  // Sends a batch of all samples and returns how its first `kept` messages read.
  std::vector<std::string> send(std::size_t kept) {
    std::vector<Message> batch = batchOf(samples_);
    library_.sendBatchTowardsHost(codec_, batch.data(), batch.data() + batch.size());
    return textsOf(batch, kept);
  }

  void* codec_ = nullptr;
  std::atomic<std::ptrdiff_t> kept_ = 0;
};

TEST_F(SharedCodec, ThreadsDoNotDisturbEachOther) {
  std::atomic<int> equal = 0;
  std::ptrdiff_t kept_alone = 0;
  std::size_t lines_alone = 0;
  send(0);
  kept_alone = kept_.exchange(0);
  const auto kept = static_cast<std::size_t>(kept_alone);
  const std::vector<std::string> alone = send(kept);
  lines_alone = takeLog().size() / 2;
  kept_ = 0;
  inParallel([&](int) {
    if (send(kept) == alone) ++equal;
  });
  EXPECT_EQ(equal, THREADS);
  EXPECT_GT(kept_alone, 400);
  EXPECT_EQ(kept_, kept_alone * THREADS);
  EXPECT_EQ(takeLog().size(), lines_alone * THREADS) << "traces and reports";
}

} // namespace
} // namespace com::velanto::connectivity::test
