// The contenders' times as bars, one block of bars a corpus:
//
//   corpus
//     contender   ██████████ 1234 ns
//
// All bars have one scale. Plain SVG, legible on light and on dark ground.
#ifndef VLT_BENCH_REPORT_SVG_CHART_HPP
#define VLT_BENCH_REPORT_SVG_CHART_HPP

#include <string>

#include "bench/suites/heat.hpp"

namespace com::velanto::connectivity::bench {

[[nodiscard]] std::string svgChart(const suite_t& suite);

} // namespace com::velanto::connectivity::bench

#endif
