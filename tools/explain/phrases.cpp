#include "tools/explain/phrases.hpp"

#include <algorithm>

#include "tools/record/columns.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t LEAST = 24; // columns for a value: room for any number

// The phrases of neighbours: paths with the same parent, from `begin` to `end`.
void appendNeighbours(std::vector<std::string>& phrases, const path_t* begin, const path_t* end) {
  const path_t above = parentOf(*begin);
  if (begin->back().in_list) {
    while (begin != end) {
      const path_t* last = begin;
      while (last + 1 != end && (last + 1)->back().index == last->back().index + 1) ++last;
      const std::string from = std::to_string(begin->back().index);
      const std::string range =
          last == begin ? from : from + "…" + std::to_string(last->back().index);
      phrases.push_back(cutBefore(textOf(above) + "[" + range + "]", PHRASE_WIDTH));
      begin = last + 1;
    }
    return;
  }
  std::vector<std::string> names;
  for (const path_t* path = begin; path != end; ++path) names.push_back(nameOf(path->back().key));
  std::string together = bracesOf(above, names);
  if (end - begin > 1 && widthOf(together) <= PHRASE_WIDTH) {
    phrases.push_back(std::move(together));
    return;
  }
  for (; begin != end; ++begin) phrases.push_back(cutBefore(textOf(*begin), PHRASE_WIDTH));
}

} // namespace

std::string valuePhraseOf(const place_t& place) { return cutBehind(place.json, PHRASE_WIDTH); }

std::string phraseOf(const place_t& place) {
  const std::string path = textOf(place.path);
  if (place.json.empty()) return cutBefore(path, PHRASE_WIDTH);
  const std::size_t beside = PHRASE_WIDTH - std::min(PHRASE_WIDTH, widthOf(path) + 1);
  const std::string value = cutBehind(place.json, std::max(LEAST, beside));
  return cutBefore(path, PHRASE_WIDTH - widthOf(value) - 1) + " " + value;
}

std::string bracesOf(const path_t& above, const std::vector<std::string>& names) {
  std::string text = textOf(above) + ".{";
  for (const std::string& name : names) text += (text.ends_with('{') ? "" : ",") + name;
  return text + "}";
}

std::vector<std::string> pathPhrasesOf(const std::vector<path_t>& paths) {
  std::vector<std::string> phrases;
  const path_t* const end = paths.data() + paths.size();
  for (const path_t* begin = paths.data(); begin != end;) {
    const path_t* after = begin + 1;
    if (begin->size() > 2) {
      const path_t above = parentOf(*begin);
      while (after != end && after->size() == begin->size() && parentOf(*after) == above &&
             after->back().in_list == begin->back().in_list) {
        ++after;
      }
    }
    begin->size() > 2 ? appendNeighbours(phrases, begin, after)
                      : phrases.push_back(cutBefore(textOf(*begin), PHRASE_WIDTH));
    begin = after;
  }
  return phrases;
}

} // namespace com::velanto::connectivity::tools
