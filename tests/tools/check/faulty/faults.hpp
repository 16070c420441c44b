// The planted faults. One library has all faults of the codec, another one all of the recorder; at its
// loading it plants the one in the name of its file: "leaks_in_batch.so" leaks in batches. Under any
// other name it is the plug-in as it is, seen through the same front. Faults of linking (a run path,
// say) need builds of their own: they are in CMakeLists.txt.
#ifndef VLT_TESTS_TOOLS_CHECK_FAULTY_FAULTS_HPP
#define VLT_TESTS_TOOLS_CHECK_FAULTY_FAULTS_HPP

#include <dlfcn.h>

#include <string_view>

// CMakeLists.txt reads the names from here.
// clang-format off
#define VLT_FAULTS(fault) \
  /* storage */ \
  fault(leaks_in_batch) \
  fault(leaks_on_drop) \
  fault(leaks_on_refusal) \
  fault(leaks_when_exhausted) \
  fault(leaks_heap) \
  fault(keeps_block_after_unload) \
  fault(frees_twice) \
  fault(shares_block) \
  fault(copies_containers) \
  fault(aborts_when_exhausted) \
  fault(leaks_in_destroy) \
  /* calls */ \
  fault(asks_level_in_batch) \
  fault(sets_status_in_batch) \
  fault(logs_at_wrong_level) \
  fault(traces_too_early) \
  fault(misspells_errors) \
  fault(prints_in_batch) \
  fault(ignores_levels) \
  fault(misses_traces) \
  fault(breaks_lines) \
  fault(renders_twice) \
  fault(prints_on_loading) \
  fault(asks_level_in_version) \
  fault(sets_status_in_destroy) \
  /* batches and links */ \
  fault(drops_first_of_many) \
  fault(stops_at_4096) \
  fault(depends_on_batch) \
  fault(swaps_order) \
  fault(sends_dropped) \
  fault(sends_one_by_one) \
  fault(spares_empty_ranges) \
  fault(empties_dropped) \
  fault(ignores_handle) \
  fault(keeps_first_link) \
  fault(accepts_null_function) \
  fault(converts_towards_transport) \
  fault(changes_passing) \
  /* lifecycle */ \
  fault(crashes_on_unload) \
  fault(hangs_in_start) \
  fault(needs_start) \
  fault(throws_from_host_ready) \
  fault(fails_in_shutdown) \
  fault(ends_the_process) \
  fault(crashes_on_null) \
  fault(reads_host_handles) \
  fault(uses_latest_codec) \
  fault(races_in_static_buffer) \
  fault(creates_one_at_a_time) \
  fault(reads_null_configuration) \
  /* configuration and content */ \
  fault(keeps_configuration) \
  fault(writes_configuration) \
  fault(refuses_empty_tenant) \
  fault(forgets_tenant) \
  fault(wrong_channel) \
  fault(loses_milliseconds) \
  fault(recurses_into_payload) \
  fault(wrong_interface_version) \
  fault(wrong_product_version) \
  fault(moves_product_version)

// Of the recorder.
#define VLT_RECORDER_FAULTS(fault) \
  /* batches */ \
  fault(copies_batch) \
  fault(passes_one_by_one) \
  fault(skips_null_payloads) \
  fault(clears_deleted_slots) \
  fault(renders_messages) \
  fault(swallows_exceptions) \
  fault(turns_back) \
  fault(needs_host_memory) \
  fault(leaks_in_batches) \
  /* files */ \
  fault(loses_lines) \
  fault(misspells_records) \
  fault(overlooks_batches) \
  fault(ignores_directions) \
  fault(ignores_switch_file) \
  fault(ignores_omissions) \
  fault(ignores_bound) \
  fault(ignores_name)
// clang-format on

namespace com::velanto::connectivity::test {

#define VLT_NAMED(name) name,
enum class Fault { NONE, VLT_FAULTS(VLT_NAMED) VLT_RECORDER_FAULTS(VLT_NAMED) };
#undef VLT_NAMED

inline Fault faultOfFile(std::string_view path) {
  std::string_view name = path.substr(path.rfind('/') + 1);
  name = name.substr(0, name.rfind('.'));
#define VLT_COMPARED(fault) \
  if (name == #fault) return Fault::fault;
  VLT_FAULTS(VLT_COMPARED)
  VLT_RECORDER_FAULTS(VLT_COMPARED)
#undef VLT_COMPARED
  return Fault::NONE;
}

// The host calls of a codec at its loading ask already.
inline bool has(Fault fault) {
  static const Fault PLANTED = [] {
    static const char INSIDE = 0;
    Dl_info file{};
    return dladdr(&INSIDE, &file) == 0 ? Fault::NONE : faultOfFile(file.dli_fname);
  }();
  return fault == PLANTED;
}

} // namespace com::velanto::connectivity::test

#endif
