// A recorder while memory runs out: creation gives a recorder or a line, messages pass without
// needing any, and the writer thread loses records and counts them.
#include <gtest/gtest.h>

#include "tests/exhaustion/exhaustion_fixture.hpp"
#include "tests/recording/chain.hpp"
#include "tests/recording/recording.hpp"
#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {
namespace {

class RecorderLibrary {
 protected:
  PluginLibrary recorders_{VLT_RECORDER_PATH, PluginLibrary::Version::OURS,
                           PluginLibrary::RECORDER_CLASS_NAME};
};

class ExhaustedRecorder : private RecorderLibrary,
                          public ExhaustionFixture,
                          public ::testing::WithParamInterface<exhaustion_t> {
 protected:
  using RecorderLibrary::recorders_;

  static void ignore(void*, vlt_underlying_message_t*, vlt_underlying_message_t*) noexcept {}

  [[nodiscard]] void* createRecorder() const {
    return recorders_.create(PLUGIN_NAME, CHAIN, settings_.underlying(), nullptr, nullptr);
  }
  // From link to destroy; the number of calls that fail.
  int live(void* recorder) {
    int failures = recorders_.setNextTowardsHost(recorder, nullptr, ignore);
    failures += recorders_.start(recorder);
    failures += send(recorder);
    failures += recorders_.shutdown(recorder);
    return failures + recorders_.destroy(recorder);
  }
  int send(void* recorder) {
    int failures = 0;
    for (int i = 0; i < 10; ++i) {
      failures +=
          recorders_.sendBatchTowardsHost(recorder, batch_.data(), batch_.data() + batch_.size());
    }
    return failures;
  }
  // One line, unless there was no memory for it.
  static void expectReported(const std::vector<log_line_t>& lines) {
    EXPECT_LE(lines.size(), 1U);
    for (const log_line_t& line : lines) {
      EXPECT_EQ(line.text, label() + "Exception from create: " + NO_MEMORY);
    }
  }
  [[nodiscard]] std::vector<recorded_file_t> recording() const {
    return readRecording(folder_.path(""), "recording");
  }

  const TemporaryFolder folder_;
  const data_t settings_ = recorderSettings(folder_.path(""), "recordingName", text("recording"),
                                            "omit", listOf(text("payload.text")));
  std::vector<Message> batch_{3};
};

TEST_P(ExhaustedRecorder, RefusedCreationIsReportedAnyOtherIsComplete) {
  live(createRecorder());
  for (std::uint64_t n = 1; !HasFailure(); ++n) {
    SCOPED_TRACE(n);
    const held_t before;
    void* recorder = nullptr;
    {
      const Exhausted exhausted(GetParam(), n);
      recorder = createRecorder();
    }
    const bool refused = refusals(GetParam()) > 0;
    if (recorder == nullptr) {
      EXPECT_TRUE(refused);
      expectReported(takeLines());
    } else {
      EXPECT_EQ(takeLines(), std::vector<log_line_t>());
      EXPECT_EQ(live(recorder), 0);
    }
    EXPECT_EQ(held_t(), before);
    if (!refused) break;
  }
  EXPECT_EQ(breachIn(recording()), "");
}

TEST_P(ExhaustedRecorder, PassesMessagesWithoutMemory) {
  void* const recorder = createRecorder();
  recorders_.setNextTowardsHost(recorder, nullptr, ignore);
  int failures = 0;
  {
    const Exhausted exhausted(GetParam(), 1);
    failures = recorders_.start(recorder) + send(recorder) + recorders_.shutdown(recorder) +
               recorders_.destroy(recorder);
  }
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(refusals(GetParam()), 0U);
  EXPECT_EQ(recordsIn(recording()), 30);
}

INSTANTIATE_TEST_SUITE_P(Memory, ExhaustedRecorder, ::testing::ValuesIn(EXHAUSTIONS),
                         [](const auto& how) { return std::string(how.param.name); });

class ExhaustedWriter : public ExhaustedRecorder {
 protected:
  // Refuses the n-th allocation of the writer thread, and the next one, until none was refused.
  void exhaust(bool for_good) {
    for (std::uint64_t n = 1; !HasFailure(); ++n) {
      SCOPED_TRACE(n);
      const held_t before;
      void* const recorder = createRecorder();
      failAllocationElsewhere(n, for_good);
      EXPECT_EQ(live(recorder), 0);
      failAllocationElsewhere(0, false);
      takeLines();
      EXPECT_EQ(held_t(), before);
      EXPECT_EQ(breachIn(recording()), "");
      if (refusedElsewhere() > 0) continue;
      EXPECT_GT(n, 1U) << "nothing was refused";
      break;
    }
    const std::vector<recorded_file_t> files = recording();
    ASSERT_FALSE(files.empty());
    EXPECT_EQ(files.back().foot->recorded, 30) << "with all its memory";
  }
};

TEST_F(ExhaustedWriter, LosesRecordsOnly) { exhaust(false); }
TEST_F(ExhaustedWriter, LosesRecordsOnlyForGood) { exhaust(true); }

} // namespace
} // namespace com::velanto::connectivity::test
