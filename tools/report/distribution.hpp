// Numbers counted in classes whose bounds double: 0, 1, 2 to 3, 4 to 7 and so on.
#ifndef VLT_TOOLS_REPORT_DISTRIBUTION_HPP
#define VLT_TOOLS_REPORT_DISTRIBUTION_HPP

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace com::velanto::connectivity::tools::report {

class Distribution {
 public:
  struct class_t {
    std::uint64_t first; // the smallest number of the class
    std::uint64_t last;  // and the largest
    std::uint64_t count;
  };

  void add(std::uint64_t number) noexcept { ++counts_[std::bit_width(number)]; }

  // From the first to the last class with a number; none without numbers.
  [[nodiscard]] std::vector<class_t> classes() const {
    std::vector<class_t> all;
    for (std::size_t width = 0; width < counts_.size(); ++width) {
      if (all.empty() && counts_[width] == 0) continue;
      const std::uint64_t first = width == 0 ? 0 : std::uint64_t{1} << (width - 1);
      all.push_back({first, width == 0 ? 0 : 2 * first - 1, counts_[width]});
    }
    while (!all.empty() && all.back().count == 0) all.pop_back();
    return all;
  }

 private:
  std::array<std::uint64_t, 65> counts_{};
};

} // namespace com::velanto::connectivity::tools::report

#endif
