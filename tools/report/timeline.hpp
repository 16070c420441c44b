// What came in along an axis, as bars of equal width: the time of the messages, or their number in
// the input. Bars are wider the longer the axis gets, so memory is bounded:
//
//   add     counts in a bar of the present width; with MOST_BARS bars it joins neighbours
//   view    joins neighbours until at most SHOWN_BARS bars cover the axis. A few messages far from
//           all others would leave one bar for the rest: they stay outside, counted
//
// Each width is a multiple of the one before, so joining loses nothing.
#ifndef VLT_TOOLS_REPORT_TIMELINE_HPP
#define VLT_TOOLS_REPORT_TIMELINE_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "tools/record/kind.hpp"

namespace com::velanto::connectivity::tools::report {

struct bar_t {
  std::array<std::uint64_t, KINDS> messages{}; // of each kind, dropped ones included
  std::uint64_t dropped = 0;

  [[nodiscard]] std::uint64_t sum() const noexcept;
  void add(const bar_t& other) noexcept;
};

struct timeline_view_t {
  std::int64_t begin = 0; // of the first bar
  std::int64_t width = 1; // of each bar
  std::int64_t last = 0;  // position of the last message in the bars
  std::vector<bar_t> bars;
  std::uint64_t outside = 0; // messages before the first and after the last bar
};

class Timeline {
 public:
  static constexpr std::size_t MOST_BARS = 2048;
  static constexpr std::size_t SHOWN_BARS = 60;

  // Widths to choose from; after the last one they double. The array must outlive this.
  explicit Timeline(std::span<const std::int64_t> widths) noexcept
      : widths_(widths), width_(widths.front()) {}

  void add(std::int64_t position, Kind kind, bool dropped);

  [[nodiscard]] std::uint64_t messages() const noexcept { return messages_; }
  // No bars without messages.
  [[nodiscard]] timeline_view_t view() const;

 private:
  using bars_t = std::map<std::int64_t, bar_t>; // by position / width, rounded down

  [[nodiscard]] std::int64_t widerThan(std::int64_t width) const noexcept;
  static bars_t joined(const bars_t& bars, std::int64_t factor);

  std::span<const std::int64_t> widths_;
  std::int64_t width_;
  bars_t bars_;
  std::int64_t last_ = 0; // position
  std::uint64_t messages_ = 0;
};

inline constexpr std::array<std::int64_t, 1> WIDTHS_OF_PLACES = {1};
// Seconds: up to a minute, an hour, a day, four weeks.
inline constexpr std::array<std::int64_t, 12> WIDTHS_OF_TIMES = {
    1, 5, 15, 60, 300, 900, 3600, 10'800, 43'200, 86'400, 604'800, 2'419'200};

} // namespace com::velanto::connectivity::tools::report

#endif
