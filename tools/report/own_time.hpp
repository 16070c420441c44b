// The time that a message gives itself: "time" of its payload, or else "lastUpdated" or
// "creationTime". This is the tool's own reading, for the axis of a chart.
#ifndef VLT_TOOLS_REPORT_OWN_TIME_HPP
#define VLT_TOOLS_REPORT_OWN_TIME_HPP

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "value/hashed_key.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::tools::report {

// Seconds since the epoch of "2024-05-14T06:02:11.000+02:00"; the fraction is cut, and a text
// without a zone is UTC. Nothing for any other text.
[[nodiscard]] std::optional<std::int64_t> secondsOf(std::string_view text) noexcept;
// "2024-05-14 04:02:11", in UTC, without the parts that are always 0 in multiples of `step` seconds.
// The time is between the years 0 and 9999.
[[nodiscard]] std::string timeText(std::int64_t seconds, std::int64_t step);

// Keeps the keys, which are blocks of the host, for as long as it lives.
class OwnTimeReader {
 public:
  // Seconds since the epoch; a number is that already.
  [[nodiscard]] std::optional<std::int64_t> timeOf(const Message& message) const;

 private:
  std::array<hashed_key_t, 3> keys_ = {hashed_key_t("time"), hashed_key_t("lastUpdated"),
                                       hashed_key_t("creationTime")};
};

} // namespace com::velanto::connectivity::tools::report

#endif
