// The parts of sections that show one message.
#include <algorithm>
#include <cctype>

#include "tools/explain/phrases.hpp"
#include "tools/report/sections.hpp"

namespace com::velanto::connectivity::tools::report {

namespace {

constexpr std::size_t LONGEST_MESSAGE = 4096; // bytes of escaped text
constexpr std::size_t LONGEST_PLACES = 300;
constexpr std::size_t MOST_ROWS = 40; // of a table of fates
constexpr std::size_t MOST_FAULTS = 8;
constexpr std::size_t MOST_LOG_LINES = 4;

// After the closing quote of the string that begins at `begin`.
std::size_t endOfText(std::string_view json, std::size_t begin) noexcept {
  std::size_t at = begin + 1;
  while (at < json.size() && json[at] != '"') at += json[at] == '\\' ? 2 : 1;
  return std::min(at + 1, json.size());
}

// The JSON in a line, an entry a line; strings stay as they are. Anything but JSON comes out somehow.
std::string indented(std::string_view json) {
  constexpr std::size_t MOST_INDENT = 20;
  std::string out;
  std::size_t depth = 0;
  const auto break_line = [&] { (out += '\n').append(2 * std::min(depth, MOST_INDENT), ' '); };
  for (std::size_t i = 0; i < json.size() && out.size() < LONGEST_MESSAGE * 2;) {
    const char c = json[i];
    const std::size_t end = c == '"' ? endOfText(json, i) : i + 1;
    const std::string_view token = json.substr(i, end - i);
    i = end;
    if (std::isspace(static_cast<unsigned char>(c)) != 0) continue;
    const bool opened = out.ends_with('{') || out.ends_with('[');
    const bool closes = c == '}' || c == ']';
    if (closes && depth > 0) --depth;
    if (closes ? !opened : opened || out.ends_with(',')) break_line();
    out += token;
    if (c == ':') out += ' ';
    if (c == '{' || c == '[') ++depth;
  }
  return out;
}

std::string textOf(const std::vector<place_t>& places) {
  std::string text;
  for (const place_t& place : places) {
    if (text.size() > LONGEST_PLACES) return text + ", …";
    text += (text.empty() ? "" : ", ") + tools::textOf(place.path);
    if (!place.json.empty()) text += " " + place.json.substr(0, LONGEST_PLACES);
  }
  return text;
}

const char* noteOf(const row_t& row) noexcept {
  switch (row.without) {
    case Without::SAME:
      return row.new_block ? "copied" : "";
    case Without::DROPPED:
      return "needed: without it, the message is dropped";
    case Without::PASSED:
      return "without it, the message passes unchanged";
    case Without::DIFFERENT:
      return "without it, other fields change";
  }
  return "";
}

struct line_t {
  Fate fate;
  std::string from;
  std::string to;
  const char* note;
};

// Unchanged fields, and lost ones with the same note, share a row.
bool shareRow(const row_t& one, const row_t& other) noexcept {
  return one.fate == other.fate && (one.fate == Fate::UNCHANGED || one.fate == Fate::LOST) &&
         one.without == other.without && one.new_block == other.new_block;
}

std::vector<line_t> linesOf(std::vector<row_t> rows) {
  std::stable_sort(rows.begin(), rows.end(), [](const row_t& one, const row_t& other) {
    return std::tie(one.fate, one.without, one.new_block) <
           std::tie(other.fate, other.without, other.new_block);
  });
  std::vector<line_t> lines;
  for (auto row = rows.begin(); row != rows.end();) {
    const auto after = std::find_if_not(
        row, rows.end(), [&first = *row](const row_t& other) { return shareRow(first, other); });
    if (after == row) {
      std::vector<place_t> from = row->from;
      from.insert(from.end(), row->with.begin(), row->with.end());
      lines.push_back({row->fate, textOf(from), textOf(row->to), noteOf(*row)});
      ++row;
      continue;
    }
    std::vector<path_t> paths;
    for (; row != after; ++row) paths.push_back(row->from.front().path);
    std::string names;
    for (const std::string& phrase : pathPhrasesOf(paths)) {
      names += (names.empty() ? "" : ", ") + phrase;
    }
    lines.push_back({std::prev(after)->fate, names, "", noteOf(*std::prev(after))});
  }
  return lines;
}

void writeFaults(Html& html, const blame_t& blame) {
  const bool proven = !blame.faults.empty();
  const std::vector<faulty_place_t>& faults = proven ? blame.faults : blame.suspects;
  if (faults.empty()) return;
  html << R"(<table class="faults"><caption>)"
       << (proven ? markup_t("Fields at fault; with these values, the message arrives")
                  : markup_t("Suspect fields; no value that the tool tried helped"))
       << R"(</caption><thead><tr><th scope="col">Field</th><th scope="col">Found</th>)"
       << (proven ? markup_t(R"(<th scope="col">Would do</th>)") : markup_t(""))
       << "</tr></thead><tbody>\n";
  for (std::size_t i = 0; i < std::min(faults.size(), MOST_FAULTS); ++i) {
    const faulty_place_t& fault = faults[i];
    std::string found = fault.found;
    if (found.empty()) found = fault.missing ? "nothing" : "a list or map";
    html << R"(<tr><th scope="row"><code>)" << shown(tools::textOf(fault.path), LONGEST_PLACES)
         << "</code></th><td><code>" << shown(found) << "</code> " << shown(fault.defect)
         << "</td>";
    if (proven) html << "<td><code>" << shown(fault.mended) << "</code></td>";
    html << "</tr>\n";
  }
  html << "</tbody></table>\n";
  if (faults.size() > MOST_FAULTS) {
    html.leaveOut("Further fields: " + grouped(faults.size() - MOST_FAULTS) + ".");
  }
}

void writeLimit(Html& html, const explanation_t& explanation) {
  if (!explanation.limited) return;
  html << "<p class=\"note\">The message is too large to try all that could be tried.</p>\n";
}

} // namespace

void writeMessage(Html& html, const example_t& example) {
  html << R"(<pre class="message">)";
  html.lines(indented(example.record.line), LONGEST_MESSAGE);
  html << "</pre>\n";
  if (!example.whole) {
    html.leaveOut("The rest of the long message at " + example.place + ".");
  }
}

void writeBlame(Html& html, const example_t& example) {
  std::size_t lines = 0;
  for (const log_line_t& line : example.record.log) {
    if (line.level > DROPPED_LEVEL || ++lines > MOST_LOG_LINES) continue;
    html << R"(<p class="log">)" << shown(line.text, 1000) << "</p>\n";
  }
  if (!example.explanation) return;
  writeFaults(html, example.explanation->blame);
  writeLimit(html, *example.explanation);
}

void writeFates(Html& html, const example_t& example) {
  if (!example.explanation || !example.explanation->stable) {
    html << "<p class=\"note\">The fate of its fields is not known.</p>\n";
    return;
  }
  if (example.explanation->passed) {
    html << "<p>The message passed unchanged.</p>\n";
    return;
  }
  html << R"(<table><caption>The fate of each field</caption><thead><tr><th scope="col">Fate</th>)"
          "<th scope=\"col\">Field</th><th scope=\"col\">Became</th></tr></thead><tbody>\n";
  const std::vector<line_t> lines = linesOf(example.explanation->rows);
  for (std::size_t i = 0; i < std::min(lines.size(), MOST_ROWS); ++i) {
    html << R"(<tr><th scope="row" class="fate">)" << shown(nameOf(lines[i].fate))
         << "</th><td><code>" << shown(lines[i].from, LONGEST_PLACES) << "</code></td><td>"
         << "<code>" << shown(lines[i].to, LONGEST_PLACES) << "</code> " << shown(lines[i].note)
         << "</td></tr>\n";
  }
  html << "</tbody></table>\n";
  writeLimit(html, *example.explanation);
  if (lines.size() > MOST_ROWS) {
    html.leaveOut("Further fates of fields of the message at " + example.place + ": " +
                  grouped(lines.size() - MOST_ROWS) + ".");
  }
}

} // namespace com::velanto::connectivity::tools::report
