// The section about other runs with the same messages: their differences, side by side.
#include "tools/report/sections.hpp"

namespace com::velanto::connectivity::tools::report {

namespace {

constexpr std::size_t SHOWN_FIELDS = 30;

void writeValue(Html& html, const std::optional<std::string>& value) {
  if (value) {
    html << "<td><code>" << shown(*value) << "</code></td>";
  } else {
    html << R"(<td class="note">nothing</td>)";
  }
}

void writePath(Html& html, const difference_t& field) {
  html << R"(<th scope="row">)" << shown(field.path);
  if (field.is_whole) html << R"( <span class="note">)" << shown(TOO_DEEP) << "</span>";
  html << "</th>";
}

void writeHeadOf(Html& html, const Changes& changes, markup_t caption, markup_t count) {
  html << R"(<table class="sides"><caption>)" << caption
       << R"(</caption><thead><tr><th scope="col">Field</th>)" << count << R"(<th scope="col">)"
       << shown(changes.before()) << R"(</th><th scope="col">)" << shown(changes.after())
       << "</th></tr></thead><tbody>\n";
}

void writeFields(Html& html, const Changes& changes) {
  const std::vector<const changed_field_t*> fields = changes.fields();
  if (fields.empty()) return;
  writeHeadOf(html, changes, "Fields that changed, each with its first message",
              R"(<th scope="col" class="number">Messages</th>)");
  std::uint64_t others = changes.otherFields();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i >= SHOWN_FIELDS) {
      others += fields[i]->count;
      continue;
    }
    html << "<tr>";
    writePath(html, fields[i]->first);
    html << R"(<td class="number">)" << shown(grouped(fields[i]->count)) << "</td>";
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
    writeHeadOf(html, changes, "Fields of this message that changed", "");
    for (const difference_t& field : message.fields) {
      html << "<tr>";
      writePath(html, field);
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

void writeChanges(Html& html, const contents_t& contents) {
  if (contents.changes.empty()) return;
  html << R"(<section id="changes" aria-labelledby="changes-title">)"
          "<h2 id=\"changes-title\">What changed</h2>\n";
  for (const Changes& changes : contents.changes) {
    html << R"(<article id=")" << shown(changes.anchor()) << R"("><h3>Compared with )"
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
