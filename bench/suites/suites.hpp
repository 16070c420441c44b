// The measurements, one function a table. Each compares before it times; with `only_check` it times
// nothing. All throw std::runtime_error at the first difference.
#ifndef VLT_BENCH_SUITES_SUITES_HPP
#define VLT_BENCH_SUITES_SUITES_HPP

#include "bench/suites/heat.hpp"

namespace com::velanto::connectivity::bench {

// All contenders over the mix, each kind, and messages that pass, in batches of that many messages.
// Nanoseconds per message.
[[nodiscard]] suite_t measureKinds(const options_t& options, std::size_t batch);

// The plug-in and the floors over the same, with input tables of capacities that insertions do not
// lead to.
[[nodiscard]] suite_t measureCapacities(const options_t& options);

// Dropped notifications, beside converted ones of the same kind. Nanoseconds per message.
[[nodiscard]] suite_t measureDropped(const options_t& options);

// One message with 10 to 100 000 fields, series or position components, for the plug-in and the
// floor. Tables are as they grow, then the worst ones. Nanoseconds per field, series or component.
[[nodiscard]] suite_t measureScaling(const options_t& options);

// One thread, then two with a codec each, over the mix. Nanoseconds per message and thread: equal
// figures for one and for two mean twice the work in the same time.
[[nodiscard]] suite_t measureThreads(const options_t& options);

// The codec's reader of timestamps beside the C library's functions, on one thread and on two.
// Nanoseconds per timestamp and thread.
[[nodiscard]] suite_t measureTimestamps(const options_t& options);

// The codec behind a recorder that records, filters out or is switched off, beside the codec behind
// an element that does nothing. Nanoseconds per message of the host's thread.
[[nodiscard]] suite_t measureRecording(const options_t& options);

// The same for single batches of 16, by wall time. Compares nothing; not for `only_check`.
[[nodiscard]] suite_t measureRecordedBatches(const options_t& options);

// Under callgrind: dumps the instructions of one run of each contender that has a plan, named
// "KIND;CONTENDER;MESSAGES". Returns false, and does nothing, when callgrind is not there.
[[nodiscard]] bool countInstructions(const options_t& options);

} // namespace com::velanto::connectivity::bench

#endif
