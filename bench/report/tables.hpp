// The measurements, as tables for people.
#ifndef VLT_BENCH_REPORT_TABLES_HPP
#define VLT_BENCH_REPORT_TABLES_HPP

#include "bench/environment.hpp"
#include "bench/suites/suites.hpp"

namespace com::velanto::connectivity::bench {

[[nodiscard]] std::string environmentText(const environment_t& environment);

// Contenders by corpora: time, and the plug-in's time divided by it.
[[nodiscard]] std::string contendersText(const std::string& title, const suite_t& suite);

// Kinds: dropped, converted, and how many times as much; then the peers' dropped ones.
[[nodiscard]] std::string droppedText(const suite_t& suite);

// Sizes: the plug-in's time per field, the floor's, and how they compare.
[[nodiscard]] std::string scalingText(const suite_t& suite);

// One thread, two, and the speed-up: how much more two do in the same time.
[[nodiscard]] std::string threadsText(const std::string& title, const suite_t& suite);

// Chains by sizes of batches: time, how much more than the codec's alone, and that in percent.
[[nodiscard]] std::string recordingText(const suite_t& suite);

// Chains: median and 99.9th percentile of a batch.
[[nodiscard]] std::string recordedBatchesText(const suite_t& suite);

} // namespace com::velanto::connectivity::bench

#endif
