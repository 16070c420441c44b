// Every sample between two neighbours, while memory runs out one allocation later each time. The
// codec drops the message at hand and reports it once, everything else arrives, nothing leaks, and
// the next batch is as ever.
#include <gtest/gtest.h>

#include <tuple>

#include "tests/exhaustion/batch_outcome.hpp"
#include "tests/exhaustion/exhaustion_fixture.hpp"
#include "tests/support/samples.hpp"

namespace com::velanto::connectivity::test {
namespace {

constexpr vlt_log_level_t REPORTS = 3;
constexpr vlt_log_level_t TRACES = 6;

class SamplesHolder {
 protected:
  const std::vector<sample_t> samples_ = readSamples();
};

class ExhaustedSamples
    : private SamplesHolder,
      public ExhaustionFixture,
      public ::testing::WithParamInterface<std::tuple<exhaustion_t, vlt_log_level_t>> {
 public:
  ~ExhaustedSamples() override { library_.destroy(codec_); }

 protected:
  ExhaustedSamples() {
    standin_set_default_log_level(std::get<1>(GetParam()));
    codec_ = create(mapOf("tenantId", text("t1")));
    library_.setNextTowardsHost(codec_, &arrived_, take);
  }

  static std::vector<Message> batchAround(const Message& sample) {
    std::vector<Message> batch;
    batch.reserve(3);
    batch.push_back(notification(EVENT_PATH, eventPayload("before")));
    batch.push_back(copyOf(sample));
    batch.push_back(notification(MEASUREMENT_PATH, measurementPayload("after")));
    return batch;
  }

  // Sends the sample between its neighbours with the n-th allocation refused; 0: none.
  batch_outcome_t send(const Message& sample, std::uint64_t n) {
    batch_outcome_t outcome;
    outcome.batch = batchAround(sample);
    Message* const first = outcome.batch.data();
    arrived_ = {};
    {
      const Exhausted exhausted(how_, n);
      outcome.result = library_.sendBatchTowardsHost(codec_, first, first + outcome.batch.size());
    }
    outcome.calls = arrived_.start == first ? arrived_.calls : -1;
    outcome.kept = static_cast<std::size_t>(arrived_.end - first);
    for (log_line_t& line : takeLines()) {
      (line.level == TRACES ? outcome.traces : outcome.reports).push_back(std::move(line));
    }
    return outcome;
  }

  // Returns whether there was a refused allocation.
  bool exhaust(const Message& sample, const batch_outcome_t& reference, std::uint64_t n) {
    const held_t before;
    bool refused = false;
    {
      const batch_outcome_t outcome = send(sample, n);
      refused = refusals(how_) > 0;
      if (refused) {
        expectLossReported(how_, batchAround(sample), reference, outcome, label());
        EXPECT_TRUE(isSame(send(sample, 0), reference)) << "the next batch differs";
      } else {
        EXPECT_TRUE(isSame(outcome, reference)) << "an allocation too few was refused";
      }
    }
    EXPECT_EQ(held_t(), before) << "leaked";
    return refused;
  }

  using SamplesHolder::samples_;
  const exhaustion_t how_ = std::get<0>(GetParam());

 private:
  struct arrived_t {
    int calls = 0;
    Message* start = nullptr;
    Message* end = nullptr;
  };
  static void take(void* handle, vlt_underlying_message_t* start, vlt_underlying_message_t* end) {
    auto& arrived = *static_cast<arrived_t*>(handle);
    ++arrived.calls;
    arrived.start = reinterpret_cast<Message*>(start);
    arrived.end = reinterpret_cast<Message*>(end);
  }

  void* codec_ = nullptr;
  arrived_t arrived_;
};

TEST_P(ExhaustedSamples, LoseTheMessageAtHandAlone) {
  for (const sample_t& sample : samples_) {
    SCOPED_TRACE(sample.place);
    const batch_outcome_t reference = send(sample.message, 0);
    std::uint64_t n = 1;
    for (; exhaust(sample.message, reference, n); ++n) {
      ASSERT_FALSE(HasFailure()) << "allocation " << n;
    }
    ASSERT_FALSE(HasFailure()) << "allocation " << n;
    EXPECT_GT(n, 2U) << "each neighbour takes at least one";
  }
}

INSTANTIATE_TEST_SUITE_P(Memory, ExhaustedSamples,
                         ::testing::Combine(::testing::ValuesIn(EXHAUSTIONS),
                                            ::testing::Values(REPORTS, TRACES)),
                         [](const auto& way) {
                           return std::string(std::get<0>(way.param).name) + "AtLevel" +
                                  std::to_string(std::get<1>(way.param));
                         });

} // namespace
} // namespace com::velanto::connectivity::test
