#include "bench/report/text_table.hpp"

#include <algorithm>
#include <array>
#include <cstdio>

namespace com::velanto::connectivity::bench {

std::string layOut(const std::vector<row_t>& rows) {
  std::vector<std::size_t> widths(rows.front().size());
  for (const row_t& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  std::string text;
  for (const row_t& row : rows) {
    text += row.front() + std::string(widths.front() - row.front().size(), ' ');
    for (std::size_t i = 1; i < row.size(); ++i) {
      text += "  " + std::string(widths[i] - row[i].size(), ' ') + row[i];
    }
    text += '\n';
  }
  return text;
}

std::string fixed(double value, int digits) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.*f", digits, value);
  return text.data();
}

} // namespace com::velanto::connectivity::bench
