// Quantiles of any number of durations in fixed memory. It counts each in a class; the bounds of a
// class are at most a 32nd apart, so a quantile is exact to about 3 percent.
#ifndef VLT_TOOLS_REPLAY_SUMMARY_DURATIONS_HPP
#define VLT_TOOLS_REPLAY_SUMMARY_DURATIONS_HPP

#include <array>
#include <bit>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace com::velanto::connectivity::tools {

class Durations {
 public:
  void add(std::chrono::nanoseconds duration, std::uint64_t times = 1) noexcept {
    const std::int64_t count = duration.count();
    classes_[classOf(count < 0 ? 0 : static_cast<std::uint64_t>(count))] += times;
    count_ += times;
  }

  [[nodiscard]] std::uint64_t count() const noexcept { return count_; }

  // The duration that the given fraction, 0 to 1, does not exceed; 0 when there are none.
  [[nodiscard]] std::chrono::nanoseconds quantile(double fraction) const noexcept {
    const auto wanted = static_cast<std::uint64_t>(fraction * static_cast<double>(count_));
    std::uint64_t seen = 0;
    for (std::size_t i = 0; i < classes_.size(); ++i) {
      seen += classes_[i];
      if (seen > wanted || (seen == count_ && seen > 0)) {
        return std::chrono::nanoseconds(static_cast<std::int64_t>(lowerBoundOf(i)));
      }
    }
    return {};
  }

  // The classes with a duration in them, from the shortest: lower bound and number of durations.
  [[nodiscard]] std::vector<std::pair<std::chrono::nanoseconds, std::uint64_t>> classes() const {
    std::vector<std::pair<std::chrono::nanoseconds, std::uint64_t>> used;
    for (std::size_t i = 0; i < classes_.size(); ++i) {
      if (classes_[i] > 0) used.emplace_back(lowerBoundOf(i), classes_[i]);
    }
    return used;
  }

 private:
  // A number below 32 is its own class; above, the position of the highest bit and the five bits
  // after it give the class.
  static constexpr int BITS = 5;
  static constexpr std::uint64_t STEPS = std::uint64_t{1} << BITS;

  static std::size_t classOf(std::uint64_t value) noexcept {
    if (value < STEPS) return value;
    const int shift = static_cast<int>(std::bit_width(value)) - BITS - 1;
    return (static_cast<std::size_t>(shift) + 1) * STEPS + ((value >> shift) - STEPS);
  }
  static std::uint64_t lowerBoundOf(std::size_t index) noexcept {
    if (index < STEPS) return index;
    const std::size_t shift = index / STEPS - 1;
    return (STEPS + index % STEPS) << shift;
  }

  std::array<std::uint64_t, STEPS * 60> classes_{};
  std::uint64_t count_ = 0;
};

} // namespace com::velanto::connectivity::tools

#endif
