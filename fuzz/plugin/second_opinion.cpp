#include "fuzz/plugin/second_opinion.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/finding.hpp"

namespace com::velanto::connectivity::fuzz {

namespace {

std::string textOf(const model::value_t& value);

// A table without entries is like none.
std::string textOf(const model::table_t& table) {
  std::vector<std::string> entries;
  for (const model::slot_t& slot : table.slots) {
    if (model::is_live(slot)) entries.push_back(textOf(slot.key) + ": " + textOf(slot.value));
  }
  std::sort(entries.begin(), entries.end());
  std::string text = "{";
  for (const std::string& entry : entries) text += entry + ", ";
  return text + "}";
}

// The same text for the same value alone.
std::string textOf(const model::value_t& value) {
  std::string text = std::to_string(value.tag) + (value.null ? "null" : "");
  switch (value.tag) {
    case VLT_TAG_EMPTY:
      return text;
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
    case VLT_TAG_BUFFER:
      return text + "'" + std::to_string(value.text.size()) + " " + value.text + "'";
    case VLT_TAG_LIST:
      for (const model::value_t& element : value.elements) text += "[" + textOf(element) + "]";
      return text;
    case VLT_TAG_MAP:
      return text + textOf(value.table);
    default:
      return text + "=" + std::to_string(value.bits);
  }
}

void requireSame(const std::string& plain, const std::string& ours, const char* what) {
  if (plain == ours) return;
  reportFinding(std::string("the second opinion differs in ") + what + ": it is\n" + plain +
                "\nours is\n" + ours);
}

std::string textOf(const std::vector<line_t>& lines) {
  std::string text;
  for (const line_t& line : lines) text += std::to_string(line.level) + " " + line.text + "\n";
  return text;
}

} // namespace

void requireSameOpinion(WatchedPlugin& plain, const message_t& before,
                        const vlt_underlying_message_t& after, const outcome_t& outcome) {
  Batch batch({&before, 1});
  const outcome_t opinion = plain.sendTowardsHost(batch);
  require(opinion.result == outcome.result, "both builds return the same");
  require(opinion.kept == outcome.kept, "both builds keep the same messages");
  requireSame(textOf(opinion.lines), textOf(outcome.lines), "the log");
  const message_t theirs = modelOf(batch[0]);
  const message_t ours = modelOf(after);
  requireSame(textOf(theirs.payload), textOf(ours.payload), "the payload");
  requireSame(textOf(theirs.metadata), textOf(ours.metadata), "the metadata");
}

} // namespace com::velanto::connectivity::fuzz
