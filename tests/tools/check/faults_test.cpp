// The check for a planted fault finds it, and no check far from it complains.
#include <fnmatch.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "tests/tools/check/check_plugin_program.hpp"

namespace com::velanto::connectivity::test {

namespace {

using patterns_t = std::vector<std::string>;

// Leaves out checks that take much of the time and find few faults.
constexpr const char* QUICK =
    "--skip loading.thousand-times --skip batches.deep-nesting --skip 'random.*'";
constexpr const char* QUICK_RECORDER = "--skip loading.thousand-times --skip batches.deep-nesting";

struct planted_t {
  const char* fault;
  const char* check;    // must find it,
  patterns_t outcomes;  // as one of these;
  patterns_t plausible; // these may find it too
  const char* arguments = QUICK;
};

void PrintTo(const planted_t& planted, std::ostream* out) { *out << planted.fault; }

const patterns_t FAILED = {"failed"};
const patterns_t CRASHED = {"crashed"};
// A damaged heap shows when it likes to.
const patterns_t FAILED_OR_CRASHED = {"failed", "crashed"};

const planted_t PLANTED[] = {
    // storage
    {"leaks_in_batch",
     "ownership.events",
     FAILED,
     {"ownership.*", "memory.*", "lifecycle.in-order", "loading.lives-again", "random.*",
      "threads.*", "configuration.left-untouched", "conformance.*"}},
    {"leaks_on_drop",
     "ownership.dropped",
     FAILED,
     {"ownership.heap-stays-level", "memory.*", "random.*", "threads.*", "conformance.*"}},
    {"leaks_on_refusal",
     "conformance.configuration",
     FAILED,
     {"conformance.*", "memory.creation*"}},
    {"leaks_when_exhausted", "memory.conversions", FAILED, {"memory.*"}},
    {"leaks_heap", "ownership.heap-stays-level", FAILED, {}},
    {"keeps_block_after_unload",
     "loading.frees-its-blocks",
     FAILED,
     {"loading.*", "lifecycle.in-order", "ownership.events-outlive",
      "configuration.left-untouched"},
     ""},
    {"frees_twice", "conformance.batches", CRASHED, {"*"}},
    {"shares_block",
     "ownership.batch",
     FAILED_OR_CRASHED,
     {"batches.*", "ownership.*", "memory.*", "threads.*", "random.*", "log.*", "nulls.*",
      "conformance.*"}},
    {"copies_containers", "ownership.containers-are-moved", FAILED, {"conformance.*", "memory.*"}},
    {"leaks_in_destroy",
     "lifecycle.destroy-at-once",
     FAILED,
     {"loading.lives-again", "lifecycle.*", "configuration.*", "conformance.*", "memory.*",
      "ownership.*", "threads.*"}},
    {"aborts_when_exhausted", "memory.conversions", CRASHED, {"memory.*"}},
    // calls
    {"asks_level_in_batch", "batches.forbidden-calls", FAILED, {"conformance.*"}},
    {"sets_status_in_batch",
     "batches.forbidden-calls",
     FAILED,
     {"conformance.*", "log.*", "memory.*"}},
    {"logs_at_wrong_level",
     "conformance.events",
     FAILED,
     {"conformance.*", "log.*", "batches.*", "memory.*", "lifecycle.*", "nulls.*",
      "batches.throwing-transport-link"}},
    {"traces_too_early", "log.no-trace-below", FAILED, {"log.*", "conformance.*"}},
    {"misspells_errors",
     "conformance.paths",
     FAILED,
     {"conformance.*", "log.*", "batches.*", "lifecycle.*", "nulls.*"}},
    {"prints_in_batch", "log.silent-when-good", FAILED, {"conformance.*"}},
    {"ignores_levels", "log.nothing-at-level-0", FAILED, {"log.no-drops-below", "conformance.*"}},
    {"misses_traces", "conformance.trace", FAILED, {}},
    {"breaks_lines", "conformance.trace", FAILED, {}},
    {"renders_twice", "log.trace-costs", FAILED, {"memory.dropping"}},
    {"prints_on_loading", "loading.is-silent", FAILED, {"log.*"}},
    {"asks_level_in_version", "versions.call-no-host", FAILED, {}},
    {"asks_for_more", "library.asks-the-host-only", FAILED, {}},
    {"sets_status_in_destroy",
     "lifecycle.destroy-sets-no-status",
     FAILED,
     {"log.*", "conformance.*"}},
    // batches and links
    {"drops_first_of_many",
     "conformance.batches",
     FAILED,
     {"batches.*", "conformance.*", "ownership.*", "memory.*", "threads.*", "random.*", "log.*",
      "lifecycle.*", "nulls.*"}},
    {"stops_at_4096", "batches.many", FAILED, {}},
    {"depends_on_batch", "random.batching", FAILED, {"batches.many", "conformance.*"}, ""},
    {"swaps_order",
     "conformance.batches",
     FAILED,
     {"batches.*", "conformance.*", "ownership.*", "random.*", "nulls.*"}},
    {"sends_dropped", "conformance.batches", FAILED, {"*"}},
    {"sends_one_by_one",
     "conformance.batches",
     FAILED,
     {"batches.*", "nulls.empty-range", "conformance.*"}},
    {"spares_empty_ranges", "conformance.batches", FAILED, {"conformance.*", "nulls.empty-range"}},
    {"empties_dropped", "conformance.paths", FAILED, {"conformance.*"}},
    {"ignores_handle",
     "batches.own-handle",
     FAILED,
     {"conformance.transport", "batches.*-handle", "batches.throwing-*", "lifecycle.in-order",
      "nulls.empty-range", "ownership.transport"}},
    {"keeps_first_link",
     "lifecycle.links-are-replaced",
     FAILED,
     {"batches.throwing-link", "nulls.link-handle", "threads.one-codec"}},
    {"accepts_null_function", "nulls.batch-function", FAILED, {}},
    {"converts_towards_transport",
     "conformance.transport",
     FAILED,
     {"conformance.transport", "batches.*-handle", "batches.throwing-*", "lifecycle.*",
      "nulls.empty-range", "ownership.transport", "batches.forbidden-calls"}},
    {"changes_passing", "conformance.paths", FAILED, {"random.*", "conformance.*"}},
    // lifecycle
    {"hangs_in_start",
     "lifecycle.in-order",
     {"hung"},
     {"lifecycle.*"},
     "--timeout 0.4 --only 'lifecycle.*'"},
    {"crashes_on_unload", "loading.loads", CRASHED, {"*"}},
    {"needs_start", "lifecycle.batch-before-start", FAILED, {"*"}},
    {"throws_from_host_ready",
     "lifecycle.in-order",
     FAILED,
     {"lifecycle.*", "nulls.plugin", "log.silent-when-good", "batches.forbidden-calls",
      "conformance.*"}},
    {"fails_in_shutdown",
     "lifecycle.in-order",
     FAILED,
     {"lifecycle.*", "nulls.host-handles", "conformance.*"}},
    {"ends_the_process",
     "lifecycle.in-order",
     CRASHED,
     {"lifecycle.*", "nulls.host-handles", "log.silent-when-good", "conformance.*"}},
    {"crashes_on_null", "nulls.plugin", CRASHED, {}},
    {"reads_host_handles", "nulls.host-handles", CRASHED, {}},
    {"uses_latest_codec",
     "lifecycle.kept-apart",
     FAILED,
     {"lifecycle.same-names", "threads.*", "log.level-of-creation"}},
    {"races_in_static_buffer",
     "threads.two-codecs",
     FAILED_OR_CRASHED,
     {"threads.*", "memory.*", "conformance.*"}},
    {"creates_one_at_a_time", "threads.create-and-destroy", FAILED, {"threads.two-codecs"}},
    {"reads_null_configuration", "conformance.configuration", CRASHED, {}},
    // configuration and content
    {"keeps_configuration",
     "configuration.may-vanish",
     FAILED_OR_CRASHED,
     {"lifecycle.*", "nulls.*", "threads.*", "log.*", "versions.*", "conformance.*"}},
    {"writes_configuration", "configuration.left-untouched", FAILED, {}},
    {"refuses_empty_tenant",
     "conformance.configuration",
     FAILED,
     {"lifecycle.*", "nulls.*", "versions.*", "conformance.*"}},
    {"forgets_tenant",
     "conformance.configuration",
     FAILED,
     {"configuration.*", "conformance.*", "lifecycle.*", "ownership.*", "threads.*",
      "memory.creation*"}},
    {"wrong_channel",
     "conformance.configuration",
     FAILED,
     {"configuration.*", "conformance.*", "lifecycle.kept-apart", "ownership.events-outlive"}},
    {"loses_milliseconds", "conformance.timestamps", FAILED, {"conformance.*"}},
    {"recurses_into_payload", "batches.deep-nesting", CRASHED, {}, ""},
    {"wrong_interface_version", "versions.interface", FAILED, {}},
    {"wrong_product_version", "versions.product", FAILED, {"versions.product-text-stays"}},
    {"moves_product_version", "versions.product-text-stays", FAILED, {}},
    // linking
    {"exports_one_more", "library.exports-the-twelve", FAILED, {}},
    {"exports_data", "library.exports-functions", FAILED, {"library.exports-the-twelve"}},
    {"lacks_an_entry_point", "library.exports-the-twelve", FAILED, {"*"}},
    {"has_run_path", "library.has-no-run-path", FAILED, {}},
    {"names_no_client", "library.needs-the-client", FAILED, {}},
    {"stays_loaded",
     "loading.leaves-the-process",
     FAILED,
     {"loading.*", "lifecycle.in-order", "ownership.events-outlive",
      "configuration.left-untouched"},
     ""},
    // batches of the recorder
    {"copies_batch", "passing.every-case", FAILED, {"*"}, QUICK_RECORDER},
    {"passes_one_by_one",
     "passing.every-case",
     FAILED,
     {"passing.*", "nulls.empty-range"},
     QUICK_RECORDER},
    {"skips_null_payloads",
     "passing.odd-values",
     FAILED,
     {"passing.*", "memory.passing"},
     QUICK_RECORDER},
    {"clears_deleted_slots", "passing.odd-values", FAILED, {"passing.*"}, QUICK_RECORDER},
    {"renders_messages",
     "passing.calls-no-host",
     FAILED,
     {"passing.*", "memory.passing"},
     QUICK_RECORDER},
    {"swallows_exceptions", "batches.throwing-link", FAILED, {"batches.*"}, QUICK_RECORDER},
    {"turns_back",
     "batches.own-handle",
     FAILED,
     {"passing.*", "batches.*", "nulls.empty-range", "lifecycle.in-order", "ownership.transport"},
     QUICK_RECORDER},
    {"needs_host_memory", "memory.passing", FAILED, {}, QUICK_RECORDER},
    {"leaks_in_batches",
     "ownership.passed",
     FAILED,
     {"ownership.*", "lifecycle.*", "loading.lives-again", "memory.passing",
      "configuration.left-untouched", "threads.*"},
     QUICK_RECORDER},
    // files of the recorder
    {"loses_lines", "recording.under-pressure", FAILED, {"recording.*"}, QUICK_RECORDER},
    {"misspells_records", "recording.reads-back", FAILED, {}, QUICK_RECORDER},
    {"overlooks_batches", "recording.under-pressure", FAILED, {"recording.*"}, QUICK_RECORDER},
    {"ignores_directions", "recording.filters", FAILED, {}, QUICK_RECORDER},
    {"ignores_switch_file", "recording.switched-off", FAILED, {}, QUICK_RECORDER},
    {"ignores_omissions", "recording.omits", FAILED, {}, QUICK_RECORDER},
    {"ignores_bound", "recording.bound", FAILED, {}, QUICK_RECORDER},
    {"ignores_name", "recording.may-vanish", FAILED, {}, QUICK_RECORDER},
};

bool matchesOne(const std::string& name, const patterns_t& patterns) {
  return std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
    return fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
  });
}

// With AddressSanitizer a check's process takes twenty times as long: there, the fault's own check
// has to do.
std::string argumentsOf(const planted_t& planted) {
  if (!heapIsReplaced()) return planted.arguments;
  return "--only " + std::string(planted.check);
}

class FaultsTest : public ::testing::TestWithParam<planted_t> {};

} // namespace

TEST_P(FaultsTest, IsFoundByItsCheck) {
  const planted_t& planted = GetParam();
  if (heapIsReplaced()) GTEST_SKIP() << "a minute of the tool's checks, which other tests run";
  const run_t run =
      CheckPluginProgram().run(std::string("--json --strict --seed 7 ") + argumentsOf(planted) +
                               " " + faultyPlugin(planted.fault));
  EXPECT_EQ(run.diagnostics, "");
  EXPECT_EQ(run.status, 1);
  std::map<std::string, std::string> outcomes = outcomesOf(run.out);
  ASSERT_TRUE(outcomes.contains(planted.check));
  EXPECT_TRUE(matchesOne(outcomes[planted.check], planted.outcomes)) << outcomes[planted.check];
  for (const auto& [name, outcome] : outcomes) {
    if (outcome == "ok" || outcome == "skipped" || name == planted.check) continue;
    EXPECT_TRUE(matchesOne(name, planted.plausible)) << name << " " << outcome;
  }
}

INSTANTIATE_TEST_SUITE_P(Planted, FaultsTest, ::testing::ValuesIn(PLANTED),
                         [](const auto& row) { return std::string(row.param.fault); });

// The front in front of the codec is no fault in itself.
TEST(FaultFreeTest, WithoutAFaultNothingIsFound) {
  for (const char* const front : {"none", "no_recorder_fault"}) {
    const run_t run = CheckPluginProgram().run("--json --seed 7 " + faultyPlugin(front));
    EXPECT_EQ(run.status, 0) << front;
    for (const auto& [name, outcome] : outcomesOf(run.out)) {
      EXPECT_TRUE(outcome == "ok" || outcome == "skipped") << name << " " << outcome;
    }
  }
}

} // namespace com::velanto::connectivity::test
