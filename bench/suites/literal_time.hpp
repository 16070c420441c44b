// Reads a timestamp the obvious way: substrings, std::stoi, strptime and timegm, one after the other.
// What the codec's own reader has to agree with, bit by bit, and to be faster than.
#ifndef VLT_BENCH_SUITES_LITERAL_TIME_HPP
#define VLT_BENCH_SUITES_LITERAL_TIME_HPP

#include <optional>

namespace com::velanto::connectivity::bench {

// Seconds since the epoch; nothing for what is no timestamp. `text` may be null.
[[nodiscard]] std::optional<double> readTimeLiterally(const char* text) noexcept;

} // namespace com::velanto::connectivity::bench

#endif
