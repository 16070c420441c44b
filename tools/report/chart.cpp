#include "tools/report/chart.hpp"

#include <algorithm>

namespace com::velanto::connectivity::tools::report {

namespace {

// In units of the drawing; the page stretches it.
constexpr std::uint64_t COLUMN = 12;
constexpr std::uint64_t GAP = 2;
constexpr std::uint64_t ABOVE = 1000; // the height of the highest column
constexpr std::uint64_t AXIS = 1020;  // where the part below begins
constexpr std::uint64_t LEAST = 60;   // so that a single dropped message shows

struct scale_t {
  std::uint64_t messages = 0; // of the highest column
  std::uint64_t dropped = 0;

  // Of the part below the line, on the same scale as the one above.
  [[nodiscard]] std::uint64_t heightOf(std::uint64_t dropped_messages) const noexcept {
    if (dropped_messages == 0) return 0;
    return std::max(LEAST, dropped_messages * ABOVE / messages);
  }
};

scale_t scaleOf(const timeline_view_t& view) noexcept {
  scale_t scale;
  for (const bar_t& bar : view.bars) {
    scale.messages = std::max(scale.messages, bar.sum());
    scale.dropped = std::max(scale.dropped, bar.dropped);
  }
  return scale;
}

std::vector<std::size_t> kindsIn(const timeline_view_t& view) {
  std::vector<std::size_t> kinds;
  for (std::size_t kind = 0; kind < KINDS; ++kind) {
    if (std::any_of(view.bars.begin(), view.bars.end(),
                    [kind](const bar_t& bar) { return bar.messages[kind] > 0; })) {
      kinds.push_back(kind);
    }
  }
  return kinds;
}

void writeRectangle(Html& html, std::uint64_t x, std::uint64_t y, std::uint64_t height) {
  html << R"( x=")" << x << R"(" y=")" << y << R"(" width=")" << COLUMN - GAP << R"(" height=")"
       << height << R"("/>)";
}

void writeColumn(Html& html, const bar_t& bar, std::uint64_t x, const scale_t& scale,
                 const std::string& label) {
  if (bar.sum() == 0) return;
  html << "<g><title>"
       << shown(label + ": " + counted(bar.sum(), "message") + ", " + grouped(bar.dropped) +
                " dropped")
       << "</title>";
  std::uint64_t below = 0;
  for (std::size_t kind = 0; kind < KINDS; ++kind) {
    if (bar.messages[kind] == 0) continue;
    const std::uint64_t from = below * ABOVE / scale.messages;
    below += bar.messages[kind];
    const std::uint64_t to = below * ABOVE / scale.messages;
    html << R"(<rect class="k)" << kind << R"(")";
    writeRectangle(html, x, ABOVE - to, std::max<std::uint64_t>(to - from, 1));
  }
  if (bar.dropped > 0) {
    html << R"(<rect class="drop")";
    writeRectangle(html, x, AXIS, scale.heightOf(bar.dropped));
  }
  html << "</g>\n";
}

void writeTable(Html& html, markup_t title, markup_t axis, const timeline_view_t& view,
                const label_t& label) {
  const std::vector<std::size_t> kinds = kindsIn(view);
  html << "<details><summary>Numbers of this chart</summary>\n<div class=\"scroll\" tabindex=\"0\" "
          R"(role="region" aria-label="Numbers: )"
       << title << R"("><table><caption>)" << title << R"(</caption><thead><tr><th scope="col">)"
       << axis << "</th>";
  for (const std::size_t kind : kinds) {
    html << R"(<th scope="col" class="number">)" << shown(nameOf(static_cast<Kind>(kind)))
         << "</th>";
  }
  html << "<th scope=\"col\" class=\"number\">dropped</th></tr></thead><tbody>\n";
  for (std::size_t i = 0; i < view.bars.size(); ++i) {
    const bar_t& bar = view.bars[i];
    if (bar.sum() == 0) continue;
    const std::int64_t position = view.begin + static_cast<std::int64_t>(i) * view.width;
    html << R"(<tr><th scope="row">)" << shown(label(position)) << "</th>";
    for (const std::size_t kind : kinds) {
      html << R"(<td class="number">)" << shown(grouped(bar.messages[kind])) << "</td>";
    }
    html << R"(<td class="number">)" << shown(grouped(bar.dropped)) << "</td></tr>\n";
  }
  html << "</tbody></table></div></details>\n";
}

void writeLegend(Html& html, const timeline_view_t& view) {
  html << R"(<ul class="legend">)";
  for (const std::size_t kind : kindsIn(view)) {
    html << R"(<li><svg class="key" viewBox="0 0 1 1" aria-hidden="true"><rect class="k)" << kind
         << R"(" width="1" height="1"/></svg>)" << shown(nameOf(static_cast<Kind>(kind)))
         << "</li>";
  }
  if (scaleOf(view).dropped > 0) {
    html << R"(<li><svg class="key" viewBox="0 0 1 1" aria-hidden="true"><rect class="drop" )"
            R"(width="1" height="1"/></svg>dropped, below the line, at most )"
         << shown(grouped(scaleOf(view).dropped)) << " a column</li>";
  }
  html << "</ul>\n";
}

} // namespace

void writeTimeline(Html& html, markup_t anchor, markup_t title, markup_t axis,
                   const timeline_view_t& view, const label_t& label) {
  const scale_t scale = scaleOf(view);
  const std::uint64_t height = AXIS + scale.heightOf(scale.dropped);
  html << R"(<figure id=")" << anchor << R"("><figcaption><h3>)" << title
       << R"(</h3><p class="note">)"
       << "Highest column: " << shown(counted(scale.messages, "message")) << "</p></figcaption>\n"
       << R"(<svg class="timeline" viewBox="0 0 )" << view.bars.size() * COLUMN << " " << height
       << R"(" preserveAspectRatio="none" role="img" aria-labelledby=")" << anchor << "-title "
       << anchor << R"(-text"><title id=")" << anchor << R"(-title">)" << title
       << R"(</title><desc id=")" << anchor << R"(-text">)"
       << shown(counted(view.bars.size(), "column")) << " from " << shown(label(view.begin))
       << " on, at most " << shown(counted(scale.messages, "message")) << " and "
       << shown(grouped(scale.dropped))
       << " dropped ones in a column. The table below has all numbers.</desc>\n";
  for (std::size_t i = 0; i < view.bars.size(); ++i) {
    const std::int64_t position = view.begin + static_cast<std::int64_t>(i) * view.width;
    writeColumn(html, view.bars[i], i * COLUMN + GAP / 2, scale, label(position));
  }
  html << R"(<rect class="axis" x="0" y=")" << ABOVE << R"(" width=")" << view.bars.size() * COLUMN
       << "\" height=\"8\"/></svg>\n<p class=\"ends\"><span>" << shown(label(view.begin))
       << "</span><span>" << shown(label(view.last)) << "</span></p>\n";
  writeLegend(html, view);
  writeTable(html, title, axis, view, label);
  html << "</figure>\n";
}

void writeShare(Html& html, std::uint64_t part, std::uint64_t whole) {
  constexpr std::uint64_t WIDTH = 1000;
  const std::uint64_t width = whole == 0 ? 0 : std::max<std::uint64_t>(part * WIDTH / whole, 4);
  html << R"(<svg class="share" viewBox="0 0 1000 10" preserveAspectRatio="none" )"
          R"(aria-hidden="true"><rect class="track" width="1000" height="10"/><rect )"
          R"(class="part" width=")"
       << (part == 0 ? 0 : width) << R"(" height="10"/></svg>)";
}

void writeDistribution(Html& html, markup_t caption, markup_t unit, markup_t counted_things,
                       const Distribution& distribution) {
  const std::vector<Distribution::class_t> classes = distribution.classes();
  std::uint64_t most = 0;
  for (const Distribution::class_t& each : classes) most = std::max(most, each.count);
  html
      << "<table><caption>" << caption << R"(</caption><thead><tr><th scope="col">)" << unit
      << R"(</th><th scope="col" class="number">)" << counted_things
      << "</th><th scope=\"col\"><span class=\"hidden\">as a bar</span></th></tr></thead><tbody>\n";
  for (const Distribution::class_t& each : classes) {
    const std::string range = each.first == each.last
                                  ? grouped(each.first)
                                  : grouped(each.first) + "–" + grouped(each.last);
    html << R"(<tr><th scope="row">)" << shown(range) << R"(</th><td class="number">)"
         << shown(grouped(each.count)) << R"(</td><td class="bar">)";
    writeShare(html, each.count, most);
    html << "</td></tr>\n";
  }
  html << "</tbody></table>\n";
}

} // namespace com::velanto::connectivity::tools::report
