#include "fuzz/plugin/second_opinion.hpp"

#include <algorithm>
#include <iterator>
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

// The kept messages in their order, and then the dropped ones, which have none. Without a link
// nobody knows how many were kept.
std::string textOf(const Batch& batch, const outcome_t& outcome) {
  std::vector<std::string> messages;
  for (std::size_t i = 0; i < batch.size(); ++i) {
    const message_t message = modelOf(batch[i]);
    messages.push_back(textOf(message.metadata) + " " + textOf(message.payload) + "\n");
  }
  std::sort(std::next(messages.begin(), static_cast<std::ptrdiff_t>(outcome.kept.value_or(0))),
            messages.end());
  std::string text;
  for (const std::string& message : messages) text += message;
  return text;
}

} // namespace

void requireSameOpinion(WatchedPlugin& plain, std::span<const message_t> before, const Batch& after,
                        const outcome_t& outcome) {
  Batch batch(before);
  const outcome_t opinion = plain.sendTowardsHost(batch);
  require(opinion.result == outcome.result, "both builds return the same");
  require(opinion.kept == outcome.kept, "both builds keep the same messages");
  requireSame(textOf(opinion.lines), textOf(outcome.lines), "the log");
  requireSame(textOf(batch, opinion), textOf(after, outcome), "the messages");
}

} // namespace com::velanto::connectivity::fuzz
