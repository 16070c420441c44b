#include "bench/report/svg_chart.hpp"

#include <algorithm>

#include "bench/report/text_table.hpp"

namespace com::velanto::connectivity::bench {

namespace {

constexpr double WIDTH = 900;
constexpr double BAR_START = 200;
constexpr double BAR_ROOM = 600; // the longest bar; its figure comes after it
constexpr double ROW = 18;
constexpr double TITLE = 34;

const char* colourOf(const std::string& contender) {
  if (contender.starts_with("plug-in")) return "#2f7ed8";
  if (contender.starts_with("floor")) return "#8a8f98";
  return "#e08a2c";
}

std::string textAt(double x, double y, const std::string& attributes, const std::string& text) {
  return "<text x=\"" + fixed(x, 0) + "\" y=\"" + fixed(y, 0) + "\" " + attributes + '>' + text +
         "</text>\n";
}

double longestOf(const suite_t& suite) {
  double longest = 0;
  for (const group_t& group : suite.groups) {
    for (const result_t& result : group.results) {
      longest = std::max(longest, median(result.samples));
    }
  }
  return longest;
}

} // namespace

std::string svgChart(const suite_t& suite) {
  const double scale = BAR_ROOM / longestOf(suite);
  std::string bars;
  double y = 0;
  for (const group_t& group : suite.groups) {
    y += TITLE;
    bars += textAt(8, y - 8, "font-weight=\"bold\"", group.name);
    for (const result_t& result : group.results) {
      const double time = median(result.samples);
      bars += textAt(BAR_START - 8, y + ROW - 5, "text-anchor=\"end\"", result.name);
      bars += "<rect x=\"" + fixed(BAR_START, 0) + "\" y=\"" + fixed(y + 3, 0) + "\" width=\"" +
              fixed(time * scale, 1) + "\" height=\"" + fixed(ROW - 5, 0) + "\" fill=\"" +
              colourOf(result.name) + "\"/>\n";
      bars += textAt(BAR_START + time * scale + 6, y + ROW - 5, "", fixed(time, 0) + " ns");
      y += ROW;
    }
  }
  const std::string size = fixed(WIDTH, 0) + ' ' + fixed(y + 12, 0);
  return R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 )" + size +
         R"(" font-family="sans-serif" font-size="12" fill="#777">)" +
         "\n<title>Nanoseconds per message, by kind and contender</title>\n" + bars + "</svg>\n";
}

} // namespace com::velanto::connectivity::bench
