// Codecs that live and die on their own threads: each decodes the same as alone, regardless of the
// others.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <vector>

#include "tests/support/host_fixture.hpp"
#include "tests/threads/parallel.hpp"

namespace com::velanto::connectivity::test {
namespace {

constexpr int LIVES = 3; // of a codec on each thread

struct outcome_t {
  std::vector<std::string> events;
  std::vector<std::string> lines;
};

class CodecsInParallel : private LibraryAndSamples, public HostFixture {
 protected:
  // One life of a codec in the host's order, with all samples in between, in both directions.
  std::vector<std::string> live(const std::string& chain) {
    const data_t settings =
        mapOf("tenantId", text(chain.c_str()), "towardsHostChannelPrefix", text(chain.c_str()));
    void* const plugin =
        library_.create("codec", chain.c_str(), settings.underlying(), nullptr, nullptr);
    if (plugin == nullptr) return {"no codec"};
    Message* kept = nullptr;
    library_.setNextTowardsHost(plugin, &kept, noteEnd);
    library_.setNextTowardsTransport(plugin, &kept, noteEnd);
    library_.start(plugin);
    library_.hostReady(plugin);
    std::vector<Message> batch = batchOf(samples_);
    Message* const first = batch.data();
    library_.sendBatchTowardsTransport(plugin, first, first + batch.size());
    library_.sendBatchTowardsHost(plugin, first, first + batch.size());
    std::vector<std::string> events = textsOf(batch, static_cast<std::size_t>(kept - first));
    library_.shutdown(plugin);
    library_.destroy(plugin);
    return events;
  }

  // The lines of one chain among `log`.
  static std::vector<std::string> linesOf(const std::vector<log_line_t>& log,
                                          const std::string& chain) {
    const std::string category = "connectivity.codec." + chain;
    std::vector<std::string> lines;
    for (const log_line_t& line : log) {
      if (line.category == category) lines.push_back(line.text);
    }
    return lines;
  }
};

TEST_F(CodecsInParallel, EachDecodesTheSameAsAlone) {
  const auto chain = [](int thread) { return "chain" + std::to_string(thread); };
  outcome_t alone[THREADS];
  std::atomic<int> equal = 0;
  for (int i = 0; i < THREADS; ++i) {
    alone[i].events = live(chain(i));
    alone[i].lines = linesOf(takeLog(), chain(i));
  }
  inParallel([&](int thread) {
    for (int life = 0; life < LIVES; ++life) {
      if (live(chain(thread)) == alone[thread].events) ++equal;
    }
  });
  EXPECT_EQ(equal, THREADS * LIVES);
  EXPECT_GT(alone[0].events.size(), 400U);
  EXPECT_NE(alone[0].events, alone[1].events) << "tenant and channel tell the codecs apart";
  const std::vector<log_line_t> log = takeLog();
  for (int i = 0; i < THREADS; ++i) {
    std::vector<std::string> expected;
    for (int life = 0; life < LIVES; ++life) {
      expected.insert(expected.end(), alone[i].lines.begin(), alone[i].lines.end());
    }
    EXPECT_EQ(linesOf(log, chain(i)), expected) << chain(i);
    EXPECT_GT(expected.size(), 200U);
  }
}

TEST_F(CodecsInParallel, CodecsOfOneNameShareOnlyTheirCategory) {
  const std::vector<std::string> alone = live("same");
  std::atomic<int> equal = 0;
  inParallel([&](int) {
    if (live("same") == alone) ++equal;
  });
  EXPECT_EQ(equal, THREADS);
}

// The last thread sets levels, has allocations counted and reads all counts while the others
// decode.
TEST_F(CodecsInParallel, HostCallsTheStandInMeanwhile) {
  constexpr std::uint64_t NEVER = UINT64_MAX;
  const std::vector<std::string> alone = live("chain");
  std::atomic<int> equal = 0;
  std::atomic<int> running = THREADS - 1;
  std::int64_t looks = 0;
  inParallel([&](int thread) {
    if (thread < THREADS - 1) {
      if (live("chain") == alone) ++equal;
      --running;
      return;
    }
    do {
      standin_set_log_level("connectivity.codec.other", 6);
      standin_fail_allocation(looks % 2 == 0 ? NEVER : 0);
      if (standin_live_blocks_total() > 0 && standin_calls_total() >= 0) ++looks;
      standin_reset_calls();
    } while (running > 0);
  });
  EXPECT_EQ(equal, THREADS - 1);
  EXPECT_GT(looks, 0);
  EXPECT_EQ(standin_failed_allocations(), 0U);
}

} // namespace
} // namespace com::velanto::connectivity::test
