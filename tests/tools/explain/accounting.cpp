#include "tests/tools/explain/accounting.hpp"

#include <algorithm>

namespace com::velanto::connectivity::test {

namespace {

using places_t = std::vector<tools::place_t> tools::row_t::*;

std::string unaccounted(const tools::Trace& trace, const std::vector<tools::row_t>& rows,
                        places_t places) {
  for (const tools::node_t& node : trace.nodes()) {
    if (!node.isLeaf()) continue;
    std::ptrdiff_t told = 0;
    for (const tools::row_t& row : rows) {
      told += std::count_if((row.*places).begin(), (row.*places).end(), [&](const auto& place) {
        return tools::isWithin(node.path, place.path);
      });
    }
    if (told != 1)
      return tools::textOf(node.path) + " is told of " + std::to_string(told) + " times";
  }
  return "";
}

} // namespace

std::string unaccounted(const tools::Trace& before, const tools::Trace& after,
                        const std::vector<tools::row_t>& rows) {
  const std::string in = unaccounted(before, rows, &tools::row_t::from);
  if (!in.empty()) return "in: " + in;
  const std::string out = unaccounted(after, rows, &tools::row_t::to);
  return out.empty() ? "" : "out: " + out;
}

} // namespace com::velanto::connectivity::test
