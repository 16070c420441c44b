// Reads a timestamp the obvious way: substrings, std::stoi, strptime and timegm, one after the
// other. The codec's own reader has to agree with it, bit by bit, and to be faster.
#ifndef VLT_BENCH_SUITES_LITERAL_TIME_HPP
#define VLT_BENCH_SUITES_LITERAL_TIME_HPP

#include <optional>

namespace com::velanto::connectivity::bench {

// Seconds since the epoch; nothing if `text` is no timestamp. `text` may be null.
[[nodiscard]] std::optional<double> readTimeLiterally(const char* text) noexcept;

} // namespace com::velanto::connectivity::bench

#endif
