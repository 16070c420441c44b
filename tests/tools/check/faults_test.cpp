// The check for a planted fault finds it.
#include <gtest/gtest.h>

#include <ostream>
#include <set>
#include <string>

#include "tests/tools/check/check_plugin_program.hpp"

namespace com::velanto::connectivity::test {

namespace {

using outcomes_t = std::set<std::string>;

struct planted_t {
  const char* fault;
  const char* check;   // must find it
  outcomes_t outcomes; // as one of these
};

void PrintTo(const planted_t& planted, std::ostream* out) { *out << planted.fault; }

const outcomes_t FAILED = {"failed"};
const outcomes_t CRASHED = {"crashed"};
const outcomes_t HUNG = {"hung"};
// A damaged heap shows when it likes to.
const outcomes_t FAILED_OR_CRASHED = {"failed", "crashed"};

const planted_t PLANTED[] = {
    // storage
    {"leaks_in_batch", "ownership.events", FAILED},
    {"leaks_on_drop", "ownership.dropped", FAILED},
    {"leaks_on_refusal", "conformance.configuration", FAILED},
    {"leaks_when_exhausted", "memory.conversions", FAILED},
    {"leaks_heap", "ownership.heap-stays-level", FAILED},
    {"keeps_block_after_unload", "loading.frees-its-blocks", FAILED},
    {"frees_twice", "conformance.batches", CRASHED},
    {"shares_block", "ownership.batch", FAILED_OR_CRASHED},
    {"copies_containers", "ownership.containers-are-moved", FAILED},
    {"leaks_in_destroy", "lifecycle.destroy-at-once", FAILED},
    {"aborts_when_exhausted", "memory.conversions", CRASHED},
    // calls
    {"asks_level_in_batch", "batches.forbidden-calls", FAILED},
    {"sets_status_in_batch", "batches.forbidden-calls", FAILED},
    {"logs_at_wrong_level", "conformance.events", FAILED},
    {"traces_too_early", "log.no-trace-below", FAILED},
    {"misspells_errors", "conformance.paths", FAILED},
    {"prints_in_batch", "log.silent-when-good", FAILED},
    {"ignores_levels", "log.nothing-at-level-0", FAILED},
    {"misses_traces", "conformance.trace", FAILED},
    {"breaks_lines", "conformance.trace", FAILED},
    {"renders_twice", "log.trace-costs", FAILED},
    {"prints_on_loading", "loading.is-silent", FAILED},
    {"asks_level_in_version", "versions.call-no-host", FAILED},
    {"asks_for_more", "library.asks-the-host-only", FAILED},
    {"sets_status_in_destroy", "lifecycle.destroy-sets-no-status", FAILED},
    // batches and links
    {"drops_first_of_many", "conformance.batches", FAILED},
    {"stops_at_4096", "batches.many", FAILED},
    {"depends_on_batch", "random.batching", FAILED},
    {"swaps_order", "conformance.batches", FAILED},
    {"sends_dropped", "conformance.batches", FAILED},
    {"sends_one_by_one", "conformance.batches", FAILED},
    {"spares_empty_ranges", "conformance.batches", FAILED},
    {"empties_dropped", "conformance.paths", FAILED},
    {"ignores_handle", "batches.own-handle", FAILED},
    {"keeps_first_link", "lifecycle.links-are-replaced", FAILED},
    {"accepts_null_function", "nulls.batch-function", FAILED},
    {"converts_towards_transport", "conformance.transport", FAILED},
    {"changes_passing", "conformance.paths", FAILED},
    // lifecycle
    {"hangs_in_start", "lifecycle.in-order", HUNG},
    {"crashes_on_unload", "loading.loads", CRASHED},
    {"needs_start", "lifecycle.batch-before-start", FAILED},
    {"throws_from_host_ready", "lifecycle.in-order", FAILED},
    {"fails_in_shutdown", "lifecycle.in-order", FAILED},
    {"ends_the_process", "lifecycle.in-order", CRASHED},
    {"crashes_on_null", "nulls.plugin", CRASHED},
    {"reads_host_handles", "nulls.host-handles", CRASHED},
    {"uses_latest_codec", "lifecycle.kept-apart", FAILED},
    {"races_in_static_buffer", "threads.two-codecs", FAILED_OR_CRASHED},
    {"creates_one_at_a_time", "threads.create-and-destroy", FAILED},
    {"reads_null_configuration", "conformance.configuration", CRASHED},
    // configuration and content
    {"keeps_configuration", "configuration.may-vanish", FAILED_OR_CRASHED},
    {"writes_configuration", "configuration.left-untouched", FAILED},
    {"refuses_empty_tenant", "conformance.configuration", FAILED},
    {"forgets_tenant", "conformance.configuration", FAILED},
    {"wrong_channel", "conformance.configuration", FAILED},
    {"loses_milliseconds", "conformance.timestamps", FAILED},
    {"recurses_into_payload", "batches.deep-nesting", CRASHED},
    {"wrong_interface_version", "versions.interface", FAILED},
    {"wrong_product_version", "versions.product", FAILED},
    {"moves_product_version", "versions.product-text-stays", FAILED},
    // linking
    {"exports_one_more", "library.exports-the-twelve", FAILED},
    {"exports_data", "library.exports-functions", FAILED},
    {"lacks_an_entry_point", "library.exports-the-twelve", FAILED},
    {"has_run_path", "library.has-no-run-path", FAILED},
    {"names_no_client", "library.needs-the-client", FAILED},
    {"stays_loaded", "loading.leaves-the-process", FAILED},
    // batches of the recorder
    {"copies_batch", "passing.every-case", FAILED_OR_CRASHED},
    {"passes_one_by_one", "passing.every-case", FAILED},
    {"skips_null_payloads", "passing.odd-values", FAILED},
    {"clears_deleted_slots", "passing.odd-values", FAILED},
    {"renders_messages", "passing.calls-no-host", FAILED},
    {"swallows_exceptions", "batches.throwing-link", FAILED},
    {"turns_back", "batches.own-handle", FAILED},
    {"needs_host_memory", "memory.passing", FAILED},
    {"leaks_in_batches", "ownership.passed", FAILED},
    // files of the recorder
    {"loses_lines", "recording.under-pressure", FAILED},
    {"misspells_records", "recording.reads-back", FAILED},
    {"overlooks_batches", "recording.under-pressure", FAILED},
    {"ignores_directions", "recording.filters", FAILED},
    {"ignores_switch_file", "recording.switched-off", FAILED},
    {"ignores_omissions", "recording.omits", FAILED},
    {"ignores_bound", "recording.bound", FAILED},
    {"ignores_name", "recording.may-vanish", FAILED},
};

class FaultsTest : public ::testing::TestWithParam<planted_t> {};

} // namespace

TEST_P(FaultsTest, IsFoundByItsCheck) {
  const planted_t& planted = GetParam();
  if (heapIsReplaced()) GTEST_SKIP() << "a minute of the tool's checks, which other tests run";
  const std::string time_limit = planted.outcomes == HUNG ? "--timeout 0.4 " : UNHURRIED;
  const run_t run =
      CheckPluginProgram().run("--json --strict --seed 7 --only " + std::string(planted.check) +
                               " " + time_limit + faultyPlugin(planted.fault));
  SCOPED_TRACE(run.out);
  EXPECT_EQ(run.diagnostics, "");
  EXPECT_EQ(run.status, 1);
  const std::string outcome = outcomesOf(run.out)[planted.check];
  EXPECT_TRUE(planted.outcomes.contains(outcome)) << outcome;
}

INSTANTIATE_TEST_SUITE_P(Planted, FaultsTest, ::testing::ValuesIn(PLANTED),
                         [](const auto& row) { return std::string(row.param.fault); });

// The front in front of the codec is no fault in itself.
TEST(FaultFreeTest, WithoutAFaultNothingIsFound) {
  for (const char* const front : {"none", "no_recorder_fault"}) {
    const run_t run =
        CheckPluginProgram().run(UNHURRIED + "--json --seed 7 " + faultyPlugin(front));
    EXPECT_EQ(run.status, 0) << front;
    for (const auto& [name, outcome] : outcomesOf(run.out)) {
      EXPECT_TRUE(outcome == "ok" || outcome == "skipped") << name << " " << outcome;
    }
  }
}

} // namespace com::velanto::connectivity::test
