// The whole circle: a host in C records samples before and after its codec, ostrovia-replay reads both
// recordings, proves a build against them, and makes a copy to hand on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/program.hpp"

namespace com::velanto::connectivity::test {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

class RecordedSamples : public Program {
 protected:
  RecordedSamples() {
    environment_ = {"CODEC=" VLT_PLUGIN_PATH, "RECORDER=" VLT_RECORDER_PATH, "SAMPLES=" VLT_SAMPLES,
                    "FAULTY=" VLT_FAULTY_PLUGINS};
    const result_t host = runShell(
        "mkdir rec; touch rec/on; echo 'tenantId: t4100' > codec.yaml; "
        "chain_host \"$CODEC\" \"$RECORDER\" rec "
        "\"$SAMPLES/site-day.ndjson\" \"$SAMPLES/failing.ndjson\"");
    EXPECT_EQ(host.status, 0) << host.diagnostics;
    EXPECT_EQ(host.out, "sent 469, reached the host 395\n");
  }
};

TEST_F(RecordedSamples, BothRecordingsReplay) {
  EXPECT_THAT(runShell("ostrovia-replay --log-level 2 rec/before > events").diagnostics,
              EndsWith("read 469, reached the host 395, dropped 74, malformed 0, T ms\n"));
  EXPECT_THAT(runShell("ostrovia-replay --log-level 2 rec/after > events").diagnostics,
              EndsWith("read 395, reached the host 395, dropped 0, malformed 0, T ms\n"));
}

TEST_F(RecordedSamples, SameBuildGivesTheRecordedEvents) {
  const result_t same =
      runShell("ostrovia-replay --config codec.yaml --expect-events rec/after rec/before > events");
  EXPECT_EQ(same.status, 0) << same.diagnostics;
  EXPECT_THAT(same.diagnostics, HasSubstr("compared 469 messages with recorded events, 0 differ"));
}

TEST_F(RecordedSamples, FaultyBuildDiffersFromTheRecordedEvents) {
  const result_t faulty = runShell(
      "ostrovia-replay --config codec.yaml --plugin \"$FAULTY/loses_milliseconds.so\" "
      "--expect-events rec/after rec/before > events");
  EXPECT_EQ(faulty.status, 5);
  EXPECT_THAT(faulty.diagnostics, HasSubstr("\n@ event.payload.creationTime\n"));
}

TEST_F(RecordedSamples, RedactedCopyHasTheSameSummary) {
  EXPECT_EQ(runShell("ostrovia-replay --quiet --redact all-texts --redacted copy.ndjson rec/before "
                     "> events")
                .status,
            0);
  const auto outcomes = [this](const std::string& input) {
    return runShell("ostrovia-replay --summary --log-level 2 " + input +
                    " 2>&1 > events | sed -n '/^ *kind/,/^$/p; /reason/,/^$/s/ [^ ]*:[0-9]*$//p'")
        .out;
  };
  const std::string original = outcomes("rec/before");
  EXPECT_THAT(original, HasSubstr("missing-key"));
  EXPECT_EQ(outcomes("copy.ndjson"), original);
}

} // namespace
} // namespace com::velanto::connectivity::test
