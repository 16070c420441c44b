#include "tools/explain/explanation_groups.hpp"

#include <vector>

#include "ndjson/visible_text.hpp"
#include "tools/record/columns.hpp"
#include "tools/record/tally.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t SHOWN = 12; // ways

void appendPaths(std::string& text, const std::vector<place_t>& places) {
  for (const place_t& place : places) appendJson(text, place.path);
  text += ';';
}

// The same for two messages that have gone the same way, and only for them.
std::string wayOf(const explanation_t& explanation) {
  std::string text;
  for (const row_t& row : explanation.rows) {
    text += nameOf(row.fate);
    appendPaths(text, row.from);
    appendPaths(text, row.to);
    appendPaths(text, row.with);
  }
  for (const faulty_place_t& fault : explanation.blame.faults) appendJson(text, fault.path);
  text += ';';
  for (const faulty_place_t& fault : explanation.blame.suspects) appendJson(text, fault.path);
  return text;
}

std::string lineOf(std::uint64_t count, const std::string& about, const std::string& first) {
  return leftPadded(std::to_string(count), 12) + "  " + padded(about, 26) + visible(first) + "\n";
}

} // namespace

void ExplanationGroups::add(const record_t& record, const explanation_t& explanation) {
  std::string about = nameOf(record.kind);
  about.append(", ").append(nameOf(record.outcome));
  const std::string key = about + ";" + wayOf(explanation);
  const auto found = ways_.find(key);
  if (found != ways_.end()) {
    ++found->second.count;
  } else if (ways_.size() == MOST) {
    ++others_;
  } else {
    ways_.emplace(key, way_t{1, record.number, about, record.place()});
  }
}

std::string ExplanationGroups::text() const {
  if (ways_.empty()) return "";
  const std::vector<const way_t*> ways = ranked(ways_);
  std::string text(1, '\n');
  text += leftPadded("messages", 12) + "  " + padded("explained alike", 26) + "first in\n";
  std::uint64_t rest = others_;
  for (std::size_t i = 0; i < ways.size(); ++i) {
    if (i < SHOWN) {
      text += lineOf(ways[i]->count, ways[i]->about, ways[i]->first);
    } else {
      rest += ways[i]->count;
    }
  }
  if (rest > 0) text += leftPadded(std::to_string(rest), 12) + "  in other ways\n";
  return text;
}

} // namespace com::velanto::connectivity::tools
