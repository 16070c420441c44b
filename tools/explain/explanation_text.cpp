// The rows of a message become entries of a page. Unchanged and lost fields show only their paths,
// converted ones their values, too; neighbours with the same way share an entry.
#include <algorithm>
#include <span>
#include <utility>

#include "tools/explain/explanation.hpp"
#include "tools/explain/page.hpp"
#include "tools/explain/phrases.hpp"
#include "tools/record/columns.hpp"

namespace com::velanto::connectivity::tools {

namespace {

using parts_t = std::vector<std::string>;
using rows_t = std::span<const row_t>;

constexpr const char* ARROW = "→ ";

Colour colourOf(Fate fate) noexcept {
  switch (fate) {
    case Fate::UNCHANGED:
      return Colour::DIM;
    case Fate::RENAMED:
    case Fate::GATHERED:
    case Fate::COPIED:
      return Colour::CYAN;
    case Fate::CONVERTED:
      return Colour::BLUE;
    case Fate::ADDED:
      return Colour::GREEN;
    case Fate::REPLACED:
    case Fate::UNKNOWN:
      return Colour::YELLOW;
    case Fate::LOST:
      return Colour::RED;
  }
  return Colour::NONE;
}

// The parts of a list: each but the last with a comma.
parts_t listed(parts_t parts) {
  for (std::size_t i = 0; i + 1 < parts.size(); ++i) parts[i] += ',';
  return parts;
}

parts_t phrasesOf(const std::vector<place_t>& places) {
  parts_t parts;
  parts.reserve(places.size());
  for (const place_t& place : places) parts.push_back(phraseOf(place));
  return listed(std::move(parts));
}

// `parts`, then an arrow and `to`.
parts_t leadingTo(parts_t parts, parts_t to) {
  to.front() = ARROW + to.front();
  std::move(to.begin(), to.end(), std::back_inserter(parts));
  return parts;
}

class Teller {
 public:
  Teller(const std::vector<row_t>& rows, Page& page) : all_(rows), page_(page) {}

  // `rows` are all rows of one fate.
  void tell(rows_t rows) {
    fate_ = rows.front().fate;
    switch (fate_) {
      case Fate::UNCHANGED:
        return tellUnchanged(rows);
      case Fate::RENAMED:
      case Fate::GATHERED:
        return tellMoved(rows);
      case Fate::COPIED:
      case Fate::CONVERTED:
        return tellConverted(rows);
      case Fate::REPLACED:
        return tellReplaced(rows);
      case Fate::ADDED:
        return tellAdded(rows);
      case Fate::LOST:
        return tellLost(rows);
      case Fate::UNKNOWN:
        return tellUnknown(rows.front());
    }
  }

 private:
  void entry(const parts_t& parts) { page_.entry(nameOf(fate_), colourOf(fate_), parts); }
  void tellUnchanged(rows_t rows);
  void tellMoved(rows_t rows);
  void tellConverted(rows_t rows);
  void tellReplaced(rows_t rows);
  void tellAdded(rows_t rows);
  void tellLost(rows_t rows);
  void tellUnknown(const row_t& row);
  void tellTogether(const std::vector<const row_t*>& group);
  [[nodiscard]] bool isAllOf(const path_t& above, std::size_t count) const;

  const std::vector<row_t>& all_;
  Page& page_;
  Fate fate_ = Fate::UNCHANGED;
};

void Teller::tellUnchanged(rows_t rows) {
  std::vector<path_t> moved;
  parts_t copies;
  for (const row_t& row : rows) {
    const path_t& path = row.from.front().path;
    if (row.new_block) {
      copies.push_back(cutBefore(textOf(path), PHRASE_WIDTH - 10) + " (copied)");
    } else {
      moved.push_back(path);
    }
  }
  parts_t parts = pathPhrasesOf(moved);
  std::move(copies.begin(), copies.end(), std::back_inserter(parts));
  entry(listed(std::move(parts)));
}

// Rows that keep their names and only go from one list or map into another share an entry.
void Teller::tellMoved(rows_t rows) {
  std::vector<std::vector<const row_t*>> groups;
  const auto is_same_way = [](const row_t& one, const row_t& other) {
    const path_t& from = one.from.front().path;
    const path_t& to = one.to.front().path;
    const path_t& other_from = other.from.front().path;
    const path_t& other_to = other.to.front().path;
    return from.size() > 2 && to.size() > 2 && other_to.size() > 2 && from.back() == to.back() &&
           !from.back().in_list && other_from.back() == other_to.back() &&
           one.new_block == other.new_block && parentOf(from) == parentOf(other_from) &&
           parentOf(to) == parentOf(other_to);
  };
  for (const row_t& row : rows) {
    const auto group = std::find_if(groups.begin(), groups.end(), [&](const auto& candidate) {
      return is_same_way(*candidate.front(), row);
    });
    group == groups.end() ? groups.push_back({&row}) : group->push_back(&row);
  }
  for (const auto& group : groups) tellTogether(group);
}

void Teller::tellTogether(const std::vector<const row_t*>& group) {
  const row_t& first = *group.front();
  const path_t& from = first.from.front().path;
  const path_t& to = first.to.front().path;
  parts_t parts = {cutBefore(textOf(from), PHRASE_WIDTH)};
  parts_t goal = {cutBefore(textOf(to), PHRASE_WIDTH - 12)};
  const bool same_name = from.size() > 2 && to.size() > 2 && from.back() == to.back();
  const bool alike =
      same_name && (group.size() > 1 || parentOf(from).back() == parentOf(to).back());
  if (alike && isAllOf(parentOf(from), group.size())) {
    parts = {cutBefore(textOf(parentOf(from)), PHRASE_WIDTH)};
    goal = {cutBefore(textOf(parentOf(to)), PHRASE_WIDTH - 12)};
  } else if (group.size() > 1) {
    std::vector<path_t> paths;
    paths.reserve(group.size());
    for (const row_t* row : group) paths.push_back(row->from.front().path);
    parts = listed(pathPhrasesOf(paths));
    goal = {cutBefore(textOf(parentOf(to)), PHRASE_WIDTH - 12)};
  }
  if (first.new_block) goal.back() += " (copied)";
  entry(leadingTo(std::move(parts), std::move(goal)));
}

// Whether `count` rows are all that tell of something within `above`.
bool Teller::isAllOf(const path_t& above, std::size_t count) const {
  std::size_t within = 0;
  for (const row_t& row : all_) {
    within += static_cast<std::size_t>(
        std::count_if(row.from.begin(), row.from.end(),
                      [&](const place_t& place) { return isWithin(place.path, above); }));
  }
  return within == count;
}

void Teller::tellConverted(rows_t rows) {
  for (const row_t& row : rows) {
    std::vector<place_t> from = row.from;
    from.insert(from.end(), row.with.begin(), row.with.end());
    const bool in_place = from.size() == 1 && row.to.size() == 1 &&
                          from.front().path == row.to.front().path && !row.to.front().json.empty();
    entry(leadingTo(phrasesOf(from),
                    in_place ? parts_t{valuePhraseOf(row.to.front())} : phrasesOf(row.to)));
  }
}

void Teller::tellReplaced(rows_t rows) {
  for (const row_t& row : rows) {
    parts_t parts = {phraseOf(row.from.front())};
    if (!row.to.empty()) {
      parts = leadingTo(std::move(parts), {valuePhraseOf(row.to.front())});
    } else if (!row.with.empty()) {
      std::vector<path_t> by;
      for (const place_t& place : row.with) by.push_back(place.path);
      parts_t names = listed(pathPhrasesOf(by));
      parts.emplace_back("by");
      std::move(names.begin(), names.end(), std::back_inserter(parts));
    }
    if (row.without == Without::DROPPED) parts.emplace_back("(needed all the same)");
    entry(parts);
  }
}

// Equal values in several entries of one map share an entry: measurements.{speed,gust}.params {}.
void Teller::tellAdded(rows_t rows) {
  for (auto row = rows.begin(); row != rows.end();) {
    const place_t& place = row->to.front();
    const auto alike = [&](const row_t& other) {
      const path_t& path = other.to.front().path;
      return path.size() > 3 && path.size() == place.path.size() &&
             path.back() == place.path.back() && !path.back().in_list &&
             !path[path.size() - 2].in_list && other.to.front().json == place.json &&
             parentOf(parentOf(path)) == parentOf(parentOf(place.path));
    };
    const auto after = std::find_if_not(row, rows.end(), alike);
    if (after - row < 2) {
      entry({phraseOf(place)});
      ++row;
      continue;
    }
    parts_t names;
    for (; row != after; ++row) names.push_back(nameOf(row->to.front().path.rbegin()[1].key));
    constexpr std::size_t NAME = 12;  // columns of the names' common end,
    constexpr std::size_t VALUE = 24; // and of the value: room for any number
    std::string end = ".";
    end += cutBehind(nameOf(place.path.back().key), NAME) + " " + cutBehind(place.json, VALUE);
    const std::string braces = bracesOf(parentOf(parentOf(place.path)), names);
    entry({cutBehind(braces, PHRASE_WIDTH - widthOf(end)) + end});
  }
}

void Teller::tellLost(rows_t rows) {
  const std::pair<Without, const char*> notes[] = {
      {Without::SAME, ""},
      {Without::DROPPED, "(needed: without it, the message is dropped)"},
      {Without::PASSED, "(without it, the message passes unchanged)"},
      {Without::DIFFERENT, "(without it, other fields change)"}};
  for (const auto& [without, note] : notes) {
    std::vector<path_t> paths;
    for (const row_t& row : rows) {
      if (row.without == without) paths.push_back(row.from.front().path);
    }
    if (paths.empty()) continue;
    parts_t parts = listed(pathPhrasesOf(paths));
    if (without != Without::SAME) parts.emplace_back(note);
    entry(parts);
  }
}

void Teller::tellUnknown(const row_t& row) {
  page_.text(nameOf(fate_), colourOf(fate_),
             std::to_string(row.from.size()) + " fields in, " + std::to_string(row.to.size()) +
                 " out: the message is too large to be run again for each of them");
}

std::string phraseOf(const faulty_place_t& fault) {
  if (fault.missing) return cutBefore(textOf(fault.path), PHRASE_WIDTH - 12) + " is missing";
  if (!fault.found.empty()) return phraseOf(place_t{fault.path, fault.found});
  return cutBefore(textOf(fault.path), PHRASE_WIDTH - 18) + ", a list or map";
}

void tellDropped(const record_t& record, const blame_t& blame, Page& page) {
  for (const log_line_t& line : record.log) {
    if (line.level <= DROPPED_LEVEL) page.text("logged", Colour::NONE, line.text);
  }
  for (const faulty_place_t& fault : blame.faults) {
    parts_t parts = {phraseOf(fault)};
    if (!fault.defect.empty()) parts.push_back(fault.defect);
    parts.back() += ';';
    parts.push_back(cutBehind(fault.mended, PHRASE_WIDTH - 10) + " would do");
    page.entry("at fault", Colour::RED, parts);
  }
  for (const faulty_place_t& fault : blame.suspects) {
    page.entry("suspect", Colour::YELLOW, {phraseOf(fault)});
  }
}

} // namespace

std::string explanationText(const record_t& record, const explanation_t& explanation, bool colour) {
  if (record.outcome == Outcome::MALFORMED) return ""; // standard error tells
  Page page(colour);
  const std::string about = std::string(": ") + nameOf(record.kind) + ", " + nameOf(record.outcome);
  page.heading(cutBefore(record.place(), 79 - widthOf(about)) + about);
  if (!explanation.stable) {
    page.text("unknown", Colour::YELLOW, "when asked again, the plug-in gives something else");
  }
  if (record.outcome == Outcome::DROPPED) tellDropped(record, explanation.blame, page);
  if (!explanation.stopped.empty()) {
    page.text("unknown", Colour::YELLOW, explanation.stopped);
    return std::move(page).take();
  }
  const std::vector<row_t>& rows = explanation.rows;
  if (explanation.passed) {
    page.text("unchanged", Colour::DIM, "everything");
  } else {
    Teller teller(rows, page);
    for (auto begin = rows.begin(); begin != rows.end();) {
      const auto end = std::find_if(begin, rows.end(),
                                    [&](const row_t& row) { return row.fate != begin->fate; });
      teller.tell(rows_t(begin, end));
      begin = end;
    }
  }
  if (explanation.limited) {
    page.text("limited", Colour::YELLOW, "the message is too large to try all that could be tried");
  }
  return std::move(page).take();
}

} // namespace com::velanto::connectivity::tools
