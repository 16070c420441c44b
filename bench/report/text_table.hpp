// Tables for people: the first column to the left, the others to the right.
#ifndef VLT_BENCH_REPORT_TEXT_TABLE_HPP
#define VLT_BENCH_REPORT_TEXT_TABLE_HPP

#include <string>
#include <vector>

namespace com::velanto::connectivity::bench {

using row_t = std::vector<std::string>;

// Rows of equal length, the head among them. Ends with a line end.
[[nodiscard]] std::string layOut(const std::vector<row_t>& rows);

// `value` with so many digits after the point.
[[nodiscard]] std::string fixed(double value, int digits);

} // namespace com::velanto::connectivity::bench

#endif
