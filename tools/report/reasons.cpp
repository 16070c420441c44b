// The sections about messages that did not come out, and about what another run did with them.
#include <algorithm>

#include "tools/report/chart.hpp"
#include "tools/report/sections.hpp"

namespace com::velanto::connectivity::tools::report {

namespace {

constexpr std::size_t SHOWN_FIELDS = 30;

std::string anchorOf(const reason_t& reason) {
  return "reason-" + reason.code + (reason.key.empty() ? "" : "-" + report::anchorOf(reason.key));
}

std::string nameOf(const reason_t& reason) {
  return reason.code + (reason.key.empty() ? "" : ": " + reason.key);
}

void writeRanking(Html& html, const std::vector<reason_t*>& reasons, std::uint64_t dropped) {
  html << "<table><caption>Reasons, the most frequent first</caption><thead><tr>"
          "<th scope=\"col\">Reason</th><th scope=\"col\" class=\"number\">Messages</th>"
          "<th scope=\"col\"><span class=\"hidden\">as a bar</span></th></tr></thead><tbody>\n";
  for (const reason_t* reason : reasons) {
    html << "<tr><th scope=\"row\"><a href=\"#" << shown(anchorOf(*reason)) << "\">"
         << shown(nameOf(*reason)) << "</a></th><td class=\"number\">"
         << shown(grouped(reason->count)) << "</td><td class=\"bar\">";
    writeShare(html, reason->count, dropped);
    html << "</td></tr>\n";
  }
  html << "</tbody></table>\n";
}

void writeExample(Html& html, const example_t& example) {
  html << "<h4>" << shown(example.place) << "</h4>\n";
  writeBlame(html, example);
  html << "<details><summary>The whole message</summary>\n";
  writeMessage(html, example);
  html << "</details>\n";
}

void writeReason(Html& html, const reason_t& reason) {
  html << "<article id=\"" << shown(anchorOf(reason)) << "\"><h3>" << shown(nameOf(reason))
       << "</h3>\n<p>" << shown(counted(reason.count, "message")) << ", first at ";
  for (std::size_t i = 0; i < reason.places.size(); ++i) {
    html << (i == 0 ? markup_t("") : markup_t(", ")) << "<code>" << shown(reason.places[i])
         << "</code>";
  }
  html << "</p>\n";
  for (const example_t& example : reason.examples) writeExample(html, example);
  html << "</article>\n";
}

void writeValue(Html& html, const std::optional<std::string>& value) {
  if (value) {
    html << "<td>" << shown(*value) << "</td>";
  } else {
    html << "<td class=\"note\">nothing</td>";
  }
}

void writeHead(Html& html, const Changes& changes, markup_t caption, markup_t count) {
  html << "<table><caption>" << caption << "</caption><thead><tr><th scope=\"col\">Field</th>"
       << count << "<th scope=\"col\">" << shown(changes.before()) << "</th><th scope=\"col\">"
       << shown(changes.after()) << "</th></tr></thead><tbody>\n";
}

void writeFields(Html& html, const Changes& changes) {
  const std::vector<const changed_field_t*> fields = changes.fields();
  if (fields.empty()) return;
  writeHead(html, changes, "Fields that changed, each with its first message",
            "<th scope=\"col\" class=\"number\">Messages</th>");
  std::uint64_t others = changes.otherFields();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i >= SHOWN_FIELDS) {
      others += fields[i]->count;
      continue;
    }
    html << "<tr><th scope=\"row\">" << shown(fields[i]->path) << "</th><td class=\"number\">"
         << shown(grouped(fields[i]->count)) << "</td>";
    writeValue(html, fields[i]->first.before);
    writeValue(html, fields[i]->first.after);
    html << "</tr>\n";
  }
  html << "</tbody></table>\n";
  if (others > 0) html.leaveOut("Changes of further fields: " + grouped(others) + ".");
}

void writeChanged(Html& html, const Changes& changes, const changed_message_t& message) {
  const auto place = [](const std::string& text) { return text.empty() ? "nothing" : text; };
  html << "<details><summary>" << shown(place(message.after)) << "</summary>\n<p>"
       << shown(changes.before()) << ": <code>" << shown(place(message.before)) << "</code>, "
       << shown(changes.after()) << ": <code>" << shown(place(message.after)) << "</code></p>\n";
  if (!message.fields.empty()) {
    writeHead(html, changes, "Fields of this message that changed", "");
    for (const difference_t& field : message.fields) {
      html << "<tr><th scope=\"row\">" << shown(field.path) << "</th>";
      writeValue(html, field.before);
      writeValue(html, field.after);
      html << "</tr>\n";
    }
    html << "</tbody></table>\n";
  }
  if (message.other_fields > 0) {
    html.leaveOut("Further changed fields of the message at " + place(message.after) + ": " +
                  grouped(message.other_fields) + ".");
  }
  html << "</details>\n";
}

} // namespace

void writeReasons(Html& html, contents_t& contents) {
  std::vector<reason_t*> reasons = contents.collection.reasons();
  if (reasons.empty()) return;
  std::uint64_t others = contents.collection.otherReasons();
  for (std::size_t i = SHOWN_REASONS; i < reasons.size(); ++i) others += reasons[i]->count;
  reasons.resize(std::min(reasons.size(), SHOWN_REASONS));
  html << "<section id=\"reasons\" aria-labelledby=\"reasons-title\">"
          "<h2 id=\"reasons-title\">Why messages were dropped</h2>\n";
  writeRanking(html, reasons, contents.collection.count(Outcome::DROPPED));
  if (others > 0) html.leaveOut("Messages dropped for further reasons: " + grouped(others) + ".");
  for (const reason_t* reason : reasons) writeReason(html, *reason);
  html << "</section>\n";
}

void writeMalformed(Html& html, const contents_t& contents) {
  const std::vector<malformed_t>& lines = contents.collection.malformed();
  if (lines.empty()) return;
  html << "<section id=\"malformed\" aria-labelledby=\"malformed-title\">"
          "<h2 id=\"malformed-title\">Malformed lines</h2>\n<table><caption>Lines that are no "
          "messages</caption><thead><tr><th scope=\"col\">Place</th><th scope=\"col\">Why</th>"
          "</tr></thead><tbody>\n";
  for (const malformed_t& line : lines) {
    html << "<tr><th scope=\"row\"><code>" << shown(line.place) << "</code></th><td>"
         << shown(line.reason) << "</td></tr>\n";
  }
  html << "</tbody></table>\n";
  const std::uint64_t all = contents.collection.count(Outcome::MALFORMED);
  if (all > lines.size()) {
    html.leaveOut("Further malformed lines: " + grouped(all - lines.size()) + ".");
  }
  html << "</section>\n";
}

void writeChanges(Html& html, const contents_t& contents) {
  if (contents.changes.empty()) return;
  html << "<section id=\"changes\" aria-labelledby=\"changes-title\">"
          "<h2 id=\"changes-title\">What changed</h2>\n";
  for (const Changes& changes : contents.changes) {
    html << "<article id=\"" << shown(changes.anchor()) << "\"><h3>Compared with "
         << shown(changes.title()) << "</h3>\n<p>"
         << shown(grouped(changes.different()) + " of " + counted(changes.compared(), "message"))
         << " differ.</p>\n";
    writeFields(html, changes);
    for (const changed_message_t& message : changes.messages()) {
      writeChanged(html, changes, message);
    }
    if (changes.different() > changes.messages().size()) {
      html.leaveOut("Further messages that differ from " + changes.title() + ": " +
                    grouped(changes.different() - changes.messages().size()) + ".");
    }
    html << "</article>\n";
  }
  html << "</section>\n";
}

} // namespace com::velanto::connectivity::tools::report
