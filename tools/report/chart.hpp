// Drawings in SVG without any text but their titles: words around them are HTML, so they stay
// readable when a drawing is stretched to the width of the page.
#ifndef VLT_TOOLS_REPORT_CHART_HPP
#define VLT_TOOLS_REPORT_CHART_HPP

#include <functional>
#include <string>

#include "tools/report/distribution.hpp"
#include "tools/report/html.hpp"
#include "tools/report/timeline.hpp"

namespace com::velanto::connectivity::tools::report {

// Tells a position of an axis.
using label_t = std::function<std::string(std::int64_t position)>;

// A figure with stacked columns by kind above the axis, dropped messages below it, and a table of
// the same numbers. `anchor` is its id; `axis` names the positions; `label` tells them.
void writeTimeline(Html& html, markup_t anchor, markup_t title, markup_t axis,
                   const timeline_view_t& view, const label_t& label);

// A table with a bar in each row, `unit` being that of the classes.
void writeDistribution(Html& html, markup_t caption, markup_t unit, markup_t counted_things,
                       const Distribution& distribution);

// A bar of `part` in `whole`, beside a number that says the same.
void writeShare(Html& html, std::uint64_t part, std::uint64_t whole);

} // namespace com::velanto::connectivity::tools::report

#endif
