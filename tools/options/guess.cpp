#include "tools/options/guess.hpp"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <vector>

namespace com::velanto::connectivity::tools {

namespace {

// The number of single letters to change, add or leave out to make `b` of `a`, without regard to
// case.
std::size_t distanceBetween(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t k = 0; k < b.size(); ++k) {
      const bool same = std::tolower(static_cast<unsigned char>(a[i])) ==
                        std::tolower(static_cast<unsigned char>(b[k]));
      const std::size_t changed = diagonal + (same ? 0 : 1);
      diagonal = row[k + 1];
      row[k + 1] = std::min({changed, row[k] + 1, diagonal + 1});
    }
  }
  return row.back();
}

} // namespace

std::string guessFor(std::string_view word, std::span<const std::string_view> known) {
  const auto nearest =
      std::min_element(known.begin(), known.end(), [&](std::string_view a, std::string_view b) {
        return distanceBetween(word, a) < distanceBetween(word, b);
      });
  // A third of the letters wrong is no slip of the pen.
  if (nearest == known.end() || distanceBetween(word, *nearest) * 3 > nearest->size()) return "";
  return ", did you mean '" + std::string(*nearest) + "'?";
}

} // namespace com::velanto::connectivity::tools
