// The sections about messages that did not come out: dropped ones by reason, and malformed lines.
#include <algorithm>

#include "tools/report/chart.hpp"
#include "tools/report/sections.hpp"

namespace com::velanto::connectivity::tools::report {

namespace {

std::string anchorOf(const reason_t& reason) {
  return "reason-" + reason.code + (reason.key.empty() ? "" : "-" + report::anchorOf(reason.key));
}

// The words for a reason; of a key, the words after it.
struct phrase_t {
  std::string_view code;
  bool has_key;
  markup_t words;
};

// The first row that fits decides.
constexpr std::array PHRASES = {
    phrase_t{"missing-key", true, " is missing"},
    phrase_t{"wrong-type", true, " has the wrong type"},
    phrase_t{"wrong-type", false, "A value has the wrong type"},
    phrase_t{"bad-timestamp", true, " is not a timestamp that the plug-in can read"},
    phrase_t{"bad-severity", false, "The severity is unknown"},
    phrase_t{"bad-status", false, "The status is unknown"},
    phrase_t{"unknown-kind", false, "The path names an unknown kind"},
    phrase_t{"no-path-segment", false, "The path names no kind"},
    phrase_t{"out-of-memory", false, "Memory ran out"},
    phrase_t{"batch-failed", false, "The plug-in failed on the batch"},
    phrase_t{"unreported", false, "The log has no reason"},
    phrase_t{"", false, "Another reason, see the log line"},
};

void writePhrase(Html& html, const reason_t& reason) {
  const auto fits = [&reason](const phrase_t& phrase) {
    const bool same_code = phrase.code == reason.code || phrase.code.empty();
    return same_code && !(phrase.has_key && reason.key.empty());
  };
  const auto* const phrase = std::find_if(PHRASES.begin(), PHRASES.end(), fits);
  if (phrase->has_key) html << "<code>" << shown(reason.key) << "</code>";
  html << phrase->words;
}

void writeRanking(Html& html, const std::vector<reason_t*>& reasons, std::uint64_t dropped) {
  html << "<table><caption>Reasons, the most frequent first</caption><thead><tr>"
          R"(<th scope="col">Reason</th><th scope="col" class="number">Messages</th>)"
          "<th scope=\"col\"><span class=\"hidden\">as a bar</span></th></tr></thead><tbody>\n";
  for (const reason_t* reason : reasons) {
    html << R"(<tr><th scope="row"><a href="#)" << shown(anchorOf(*reason)) << R"(">)";
    writePhrase(html, *reason);
    html << R"(</a></th><td class="number">)" << shown(grouped(reason->count))
         << R"(</td><td class="bar">)";
    writeShare(html, reason->count, dropped);
    html << "</td></tr>\n";
  }
  html << "</tbody></table>\n";
}

// The first example is open; the others have their place as a headline to open.
void writeExample(Html& html, const example_t& example, bool is_first) {
  if (is_first) {
    html << "<h4><code>" << shown(example.place) << "</code></h4>\n";
  } else {
    html << "<details><summary>Another one: <code>" << shown(example.place)
         << "</code></summary>\n";
  }
  writeBlame(html, example);
  if (is_first) html << "<details><summary>The whole message</summary>\n";
  writeMessage(html, example);
  html << "</details>\n";
}

void writeReason(Html& html, const reason_t& reason) {
  html << R"(<article id=")" << shown(anchorOf(reason)) << R"("><h3>)";
  writePhrase(html, reason);
  html << "</h3>\n<p>" << shown(counted(reason.count, "message")) << " with the reason <code>"
       << shown(reason.code) << "</code>, first at ";
  for (std::size_t i = 0; i < reason.places.size(); ++i) {
    html << (i == 0 ? markup_t("") : markup_t(", ")) << "<code>" << shown(reason.places[i])
         << "</code>";
  }
  html << "</p>\n";
  for (const example_t& example : reason.examples) {
    writeExample(html, example, &example == reason.examples.data());
  }
  html << "</article>\n";
}

} // namespace

void writeReasons(Html& html, contents_t& contents) {
  std::vector<reason_t*> reasons = contents.collection.reasons();
  if (reasons.empty()) return;
  std::uint64_t others = contents.collection.otherReasons();
  for (std::size_t i = SHOWN_REASONS; i < reasons.size(); ++i) others += reasons[i]->count;
  reasons.resize(std::min(reasons.size(), SHOWN_REASONS));
  html << R"(<section id="reasons" aria-labelledby="reasons-title">)"
          "<h2 id=\"reasons-title\">Why messages were dropped</h2>\n";
  writeRanking(html, reasons, contents.collection.count(Outcome::DROPPED));
  if (others > 0) html.leaveOut("Messages dropped for further reasons: " + grouped(others) + ".");
  for (const reason_t* reason : reasons) writeReason(html, *reason);
  html << "</section>\n";
}

void writeMalformed(Html& html, const contents_t& contents) {
  const std::vector<malformed_t>& lines = contents.collection.malformed();
  if (lines.empty()) return;
  html << R"(<section id="malformed" aria-labelledby="malformed-title">)"
          "<h2 id=\"malformed-title\">Malformed lines</h2>\n<table><caption>Lines that are no "
          R"(messages</caption><thead><tr><th scope="col">Place</th><th scope="col">Why</th>)"
          "</tr></thead><tbody>\n";
  for (const malformed_t& line : lines) {
    html << R"(<tr><th scope="row"><code>)" << shown(line.place) << "</code></th><td>"
         << shown(line.reason) << "</td></tr>\n";
  }
  html << "</tbody></table>\n";
  const std::uint64_t all = contents.collection.count(Outcome::MALFORMED);
  if (all > lines.size()) {
    html.leaveOut("Further malformed lines: " + grouped(all - lines.size()) + ".");
  }
  html << "</section>\n";
}

} // namespace com::velanto::connectivity::tools::report
