// The measurements, for programs: every suite with medians, quartiles and ratios.
#ifndef VLT_BENCH_REPORT_JSON_REPORT_HPP
#define VLT_BENCH_REPORT_JSON_REPORT_HPP

#include <string>
#include <vector>

#include "bench/environment.hpp"
#include "bench/suites/heat.hpp"

namespace com::velanto::connectivity::bench {

// {"environment": {…}, "suites": [{"name", "unit", "groups": [{"name", "contenders": [{"name",
// "median", "quartiles": [lower, upper], "ratio", "rounds"}]}]}]}. The ratio is the first contender's
// time divided by this one's.
[[nodiscard]] std::string jsonReport(const environment_t& environment,
                                     const std::vector<suite_t>& suites);

} // namespace com::velanto::connectivity::bench

#endif
