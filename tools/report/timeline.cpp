#include "tools/report/timeline.hpp"

#include <algorithm>
#include <numeric>

namespace com::velanto::connectivity::tools::report {

namespace {

std::int64_t quotient(std::int64_t position, std::int64_t width) noexcept {
  const std::int64_t result = position / width;
  return position % width < 0 ? result - 1 : result;
}

// The numbers of the first and the last bar to show.
struct reach_t {
  std::int64_t first;
  std::int64_t last;
};

// Everything, unless nearly everything is within a fifth of it: then that, with some room around.
reach_t reachOf(const std::map<std::int64_t, bar_t>& bars, std::uint64_t messages) noexcept {
  constexpr std::uint64_t FEW = 10; // too few to call some of them exceptions
  const reach_t all = {bars.begin()->first, bars.rbegin()->first};
  if (messages < FEW) return all;
  const std::uint64_t ignored = std::max<std::uint64_t>(1, messages / 100); // on either side
  reach_t most = all;
  std::uint64_t seen = 0;
  for (const auto& [number, bar] : bars) {
    if (seen <= ignored) most.first = number;
    if (seen < messages - ignored) most.last = number;
    seen += bar.sum();
  }
  const std::int64_t size = most.last - most.first + 1;
  if (all.last - all.first < 5 * size) return all;
  const std::int64_t room = size / 8 + 1;
  return {std::max(all.first, most.first - room), std::min(all.last, most.last + room)};
}

} // namespace

std::uint64_t bar_t::sum() const noexcept {
  return std::accumulate(messages.begin(), messages.end(), std::uint64_t{0});
}

void bar_t::add(const bar_t& other) noexcept {
  for (std::size_t i = 0; i < KINDS; ++i) messages[i] += other.messages[i];
  dropped += other.dropped;
}

void Timeline::add(std::int64_t position, Kind kind, bool dropped) {
  bar_t& bar = bars_[quotient(position, width_)];
  ++bar.messages[static_cast<std::size_t>(kind)];
  bar.dropped += dropped ? 1 : 0;
  last_ = messages_++ == 0 ? position : std::max(last_, position);
  while (bars_.size() > MOST_BARS) {
    const std::int64_t wider = widerThan(width_);
    bars_ = joined(bars_, wider / width_);
    width_ = wider;
  }
}

std::int64_t Timeline::widerThan(std::int64_t width) const noexcept {
  const auto next = std::upper_bound(widths_.begin(), widths_.end(), width);
  return next == widths_.end() ? width * 2 : *next;
}

Timeline::bars_t Timeline::joined(const bars_t& bars, std::int64_t factor) {
  bars_t wider;
  for (const auto& [number, bar] : bars) wider[quotient(number, factor)].add(bar);
  return wider;
}

timeline_view_t Timeline::view() const {
  timeline_view_t view;
  if (bars_.empty()) return view;
  reach_t reach = reachOf(bars_, messages_);
  bars_t bars(bars_.lower_bound(reach.first), bars_.upper_bound(reach.last));
  view.width = width_;
  while (reach.last - reach.first >= static_cast<std::int64_t>(SHOWN_BARS)) {
    const std::int64_t wider = widerThan(view.width);
    const std::int64_t factor = wider / view.width;
    bars = joined(bars, factor);
    reach = {quotient(reach.first, factor), quotient(reach.last, factor)};
    view.width = wider;
  }
  view.begin = reach.first * view.width;
  view.bars.resize(static_cast<std::size_t>(reach.last - reach.first) + 1);
  view.last = std::min(last_, (reach.last + 1) * view.width - 1);
  view.outside = messages_;
  for (const auto& [number, bar] : bars) {
    view.bars[static_cast<std::size_t>(number - reach.first)] = bar;
    view.outside -= bar.sum();
  }
  return view;
}

} // namespace com::velanto::connectivity::tools::report
