// The sections that show the run as a whole: its outcome, and the messages that came in.
#include <algorithm>

#include "tools/report/chart.hpp"
#include "tools/report/sections.hpp"

namespace com::velanto::connectivity::tools::report {

namespace {

constexpr std::array OUTCOMES_OF_MESSAGES = {Outcome::CONVERTED, Outcome::PASSED, Outcome::DROPPED};

const char* meaningOf(exit_status_t status) noexcept {
  const auto* const row =
      std::find_if(EXIT_STATUSES.begin(), EXIT_STATUSES.end(),
                   [status](const status_row_t& each) { return each.status == status; });
  return row == EXIT_STATUSES.end() ? "" : row->meaning;
}

void writeFigure(Html& html, markup_t name, std::uint64_t number, bool is_bad = false) {
  html << (is_bad ? markup_t(R"(<div class="bad">)") : markup_t("<div>")) << "<dt>" << name
       << "</dt><dd>" << shown(grouped(number)) << "</dd></div>";
}

void writeKinds(Html& html, const Collection& collection) {
  html << R"(<table id="kinds"><caption>Messages by kind and outcome</caption><thead><tr>)"
          R"(<th scope="col">Kind</th>)";
  for (const Outcome outcome : OUTCOMES_OF_MESSAGES) {
    html << R"(<th scope="col" class="number">)" << shown(nameOf(outcome)) << "</th>";
  }
  html << "<th scope=\"col\" class=\"number\">all</th></tr></thead><tbody>\n";
  for (std::size_t i = 0; i < KINDS; ++i) {
    const Kind kind = static_cast<Kind>(i);
    if (collection.count(kind) == 0) continue;
    html << R"(<tr><th scope="row" class="kind"><svg class="key" viewBox="0 0 1 1" )"
            R"(aria-hidden="true"><rect )"
            R"(class="k)"
         << i << R"(" width="1" height="1"/></svg>)" << shown(nameOf(kind)) << "</th>";
    for (const Outcome outcome : OUTCOMES_OF_MESSAGES) {
      html << R"(<td class="number">)" << shown(grouped(collection.count(kind, outcome)))
           << "</td>";
    }
    html << R"(<td class="number">)" << shown(grouped(collection.count(kind))) << "</td></tr>\n";
  }
  html << "</tbody></table>\n";
}

void writeTimes(Html& html, const Collection& collection) {
  const timeline_view_t view = collection.times().view();
  std::uint64_t messages = 0;
  for (const Outcome outcome : OUTCOMES_OF_MESSAGES) messages += collection.count(outcome);
  if (!view.bars.empty()) {
    writeTimeline(html, "by-time", "By the messages’ own time (UTC)", "From", view,
                  [&view](std::int64_t seconds) { return timeText(seconds, view.width); });
  }
  const std::uint64_t untold = messages - collection.times().messages();
  if (untold > 0) {
    html.leaveOut(
        "Messages without a readable time, not in the chart of times: " + grouped(untold) + ".");
  }
  if (view.outside > 0) {
    html.leaveOut("Messages with a time far from all others, not in the chart of times: " +
                  grouped(view.outside) + ".");
  }
}

} // namespace

std::string headlineOf(const contents_t& contents) {
  const Collection& collection = contents.collection;
  const std::uint64_t dropped = collection.count(Outcome::DROPPED);
  const std::uint64_t malformed = collection.count(Outcome::MALFORMED);
  const std::uint64_t messages = contents.outcome.read - malformed;
  std::string text;
  if (messages == 0) {
    text = "No messages";
  } else if (dropped == 0) {
    text = messages == 1 ? "1 message arrived" : "All " + counted(messages, "message") + " arrived";
  } else {
    text = grouped(dropped) + " of " + counted(messages, "message") +
           (dropped == 1 ? " was dropped" : " were dropped");
  }
  if (malformed > 0) text += ", " + counted(malformed, "line") + " malformed";
  for (const Changes& changes : contents.changes) {
    const std::uint64_t different = changes.different();
    if (different == 0) continue;
    text += ", " + grouped(different) + (different == 1 ? " differs" : " differ") + " from " +
            changes.title();
  }
  return text;
}

void writeOutcome(Html& html, const contents_t& contents) {
  const Collection& collection = contents.collection;
  html << R"(<section id="outcome" aria-labelledby="outcome-title">)"
          "<h2 id=\"outcome-title\">Outcome</h2>\n<dl class=\"figures\">";
  writeFigure(html, "lines read", contents.outcome.read);
  writeFigure(html, "converted", collection.count(Outcome::CONVERTED));
  writeFigure(html, "passed", collection.count(Outcome::PASSED));
  const std::uint64_t dropped = collection.count(Outcome::DROPPED);
  writeFigure(html, "dropped", dropped, dropped > 0);
  const std::uint64_t malformed = collection.count(Outcome::MALFORMED);
  if (malformed > 0) writeFigure(html, "malformed", malformed, true);
  html << "</dl>\n<p>Converted messages came out as typed events, passed ones without "
          "an event type, dropped ones not at all.</p>\n<ul>";
  for (const Changes& changes : contents.changes) {
    html << R"(<li><a href="#)" << shown(changes.anchor()) << R"(">)"
         << shown(grouped(changes.different()) + " of " + counted(changes.compared(), "message"))
         << " differ</a> from " << shown(changes.title()) << ".</li>";
  }
  html << "<li>Exit status " << static_cast<std::uint64_t>(contents.outcome.status) << ": "
       << shown(meaningOf(contents.outcome.status)) << ".</li>";
  if (!contents.outcome.blocks) {
    html << "<li>The host library does not count its blocks of memory.</li>";
  } else if (*contents.outcome.blocks != 0) {
    html << R"(<li class="bad">Blocks of memory that the host did not get back: )"
         << shown(std::to_string(*contents.outcome.blocks)) << ".</li>";
  }
  html << "</ul></section>\n";
}

void writeArrivals(Html& html, const contents_t& contents) {
  const Collection& collection = contents.collection;
  const timeline_view_t places = collection.places().view();
  if (places.bars.empty()) return;
  html << R"(<section id="arrivals" aria-labelledby="arrivals-title">)"
          "<h2 id=\"arrivals-title\">Messages that came in</h2>\n";
  writeTimes(html, collection);
  writeTimeline(html, "by-place", "By their place in the input", "From number", places,
                [](std::int64_t place) { return grouped(static_cast<std::uint64_t>(place) + 1); });
  writeKinds(html, collection);
  html << "</section>\n";
}

} // namespace com::velanto::connectivity::tools::report
