// The faults that can be planted. A build names one as VLT_FAULT; `none` is the codec as it is, seen
// through the same front. Faults of linking (a run path, say) are in CMakeLists.txt.
#ifndef VLT_TESTS_TOOLS_CHECK_PLUGIN_FAULTY_FAULTS_HPP
#define VLT_TESTS_TOOLS_CHECK_PLUGIN_FAULTY_FAULTS_HPP

namespace com::velanto::connectivity::test {

enum class Fault {
  none,
  // storage
  leaks_in_batch,
  leaks_on_drop,
  leaks_on_refusal,
  leaks_when_exhausted,
  leaks_heap,
  keeps_block_after_unload,
  frees_twice,
  shares_block,
  copies_containers,
  aborts_when_exhausted,
  leaks_in_destroy,
  // calls
  asks_level_in_batch,
  sets_status_in_batch,
  logs_at_wrong_level,
  traces_too_early,
  misspells_errors,
  prints_in_batch,
  ignores_levels,
  misses_traces,
  breaks_lines,
  renders_twice,
  prints_on_loading,
  asks_level_in_version,
  asks_for_more,
  sets_status_in_destroy,
  // batches and links
  drops_first_of_many,
  stops_at_4096,
  depends_on_batch,
  swaps_order,
  sends_dropped,
  sends_one_by_one,
  spares_empty_ranges,
  empties_dropped,
  ignores_handle,
  keeps_first_link,
  accepts_null_function,
  converts_towards_transport,
  changes_passing,
  // lifecycle
  crashes_on_unload,
  hangs_in_start,
  needs_start,
  throws_from_host_ready,
  fails_in_shutdown,
  ends_the_process,
  crashes_on_null,
  reads_host_handles,
  uses_latest_codec,
  races_in_static_buffer,
  creates_one_at_a_time,
  reads_null_configuration,
  // configuration and content
  keeps_configuration,
  writes_configuration,
  refuses_empty_tenant,
  forgets_tenant,
  wrong_channel,
  loses_milliseconds,
  recurses_into_payload,
  wrong_interface_version,
  wrong_product_version,
  moves_product_version,
};

#ifdef VLT_FAULT
consteval bool has(Fault fault) { return fault == Fault::VLT_FAULT; }
#endif

} // namespace com::velanto::connectivity::test

#endif
