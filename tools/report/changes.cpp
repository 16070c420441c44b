#include "tools/report/changes.hpp"

#include <algorithm>

namespace com::velanto::connectivity::tools::report {

namespace {

// Whether `at` is between the bytes of one character.
bool isInside(const std::string& text, std::size_t at) noexcept {
  return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
}

// The part of long values around their first different byte.
difference_t cut(difference_t difference) {
  constexpr std::size_t LEAD = 60; // bytes before it
  std::size_t same = 0;
  if (difference.before && difference.after) {
    const auto differing = std::mismatch(difference.before->begin(), difference.before->end(),
                                         difference.after->begin(), difference.after->end());
    same = static_cast<std::size_t>(differing.first - difference.before->begin());
  }
  std::size_t begin = same > LEAD ? same - LEAD : 0;
  while (difference.before && isInside(*difference.before, begin)) --begin;
  for (std::optional<std::string>* value : {&difference.before, &difference.after}) {
    if (!*value || (*value)->size() <= Changes::LONGEST_VALUE) continue;
    std::size_t end = std::min(begin + Changes::LONGEST_VALUE, (*value)->size());
    while (isInside(**value, end)) --end;
    const bool is_whole = end == (*value)->size();
    *value = (begin > 0 ? "…" : "") + (*value)->substr(begin, end - begin) + (is_whole ? "" : "…");
  }
  return difference;
}

} // namespace

void Changes::add(const std::string& place_before, const std::string& place_after,
                  const std::vector<difference_t>& differences) {
  for (const difference_t& difference : differences) {
    const auto found = numbers_.find(difference.path);
    if (found != numbers_.end()) {
      ++fields_[found->second].count;
    } else if (fields_.size() == MOST_PATHS || difference.path.size() > LONGEST_VALUE) {
      ++other_fields_;
    } else {
      numbers_.emplace(difference.path, fields_.size());
      fields_.push_back({difference.path, 1, cut(difference)});
    }
  }
  if (messages_.size() == MOST_MESSAGES) return;
  changed_message_t message{place_before, place_after, {}, 0};
  for (const difference_t& difference : differences) {
    if (message.fields.size() < MOST_FIELDS) {
      message.fields.push_back(cut(difference));
    } else {
      ++message.other_fields;
    }
  }
  messages_.push_back(std::move(message));
}

std::vector<const changed_field_t*> Changes::fields() const {
  std::vector<const changed_field_t*> ranked;
  for (const changed_field_t& field : fields_) ranked.push_back(&field);
  std::stable_sort(
      ranked.begin(), ranked.end(),
      [](const changed_field_t* a, const changed_field_t* b) { return a->count > b->count; });
  return ranked;
}

} // namespace com::velanto::connectivity::tools::report
