#include "tools/explain/change.hpp"

#include <algorithm>
#include <cctype>
#include <limits>
#include <string>
#include <utility>

#include "ndjson/make_blocks.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools {

namespace {

const data_t* childOf(const data_t& value, const step_t& step) {
  if (step.in_list) {
    const auto* const list = value.get_if<list_t>();
    return list != nullptr && step.index < list->size() ? &(*list)[step.index] : nullptr;
  }
  const auto* const map = value.get_if<map_t>();
  return map == nullptr ? nullptr : map->find_value(data_t(step.key.c_str()));
}

data_t* mutableValueAt(Message& message, const path_t& path) {
  return const_cast<data_t*>(valueAt(message, path)); // the message is not constant
}

// The map that `path` ends in; null when its last step is no entry or there is no map.
map_t* mapAround(Message& message, const path_t& path) {
  if (path.size() < 2 || path.back().in_list) return nullptr;
  if (path.size() == 2 && path.front().key == METADATA) return &message.getMetadataMap();
  data_t* const around = mutableValueAt(message, parentOf(path));
  return around == nullptr ? nullptr : around->get_if<map_t>();
}

void removeElement(data_t& around, std::size_t index) {
  auto& list = around.get<list_t>();
  std::vector<data_t> rest;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (i != index) rest.push_back(std::move(list[i]));
  }
  around = makeList(std::move(rest));
}

void remove(Message& message, const path_t& path) {
  if (path.size() == 1) {
    path.front().key == METADATA ? message.getMetadataMap().clear()
                                 : void(message.getPayload() = data_t());
  } else if (map_t* const map = mapAround(message, path); map != nullptr) {
    map->erase(map->find(data_t(path.back().key.c_str())));
  } else if (valueAt(message, path) != nullptr) {
    removeElement(*mutableValueAt(message, parentOf(path)), path.back().index);
  }
}

char otherCharacter(char c) noexcept {
  if (std::isdigit(static_cast<unsigned char>(c)) != 0) return c == '9' ? '8' : char(c + 1);
  if (c == 'z' || c == 'Z') return char(c - 1);
  return char(c + 1);
}

// The places where a character may change, the promising ones first.
std::vector<std::size_t> placesIn(const std::string& text) {
  const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
  const auto is_letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  std::vector<std::size_t> places;
  const auto add = [&places](std::size_t place) {
    if (std::find(places.begin(), places.end(), place) == places.end()) places.push_back(place);
  };
  const auto add_ends = [&](const auto& wanted) {
    const auto first = std::find_if(text.begin(), text.end(), wanted);
    if (first == text.end()) return;
    add(static_cast<std::size_t>(first - text.begin()));
    const auto last = std::find_if(text.rbegin(), text.rend(), wanted);
    add(static_cast<std::size_t>(text.rend() - last) - 1);
  };
  add_ends(is_digit);
  add_ends(is_letter);
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (is_letter(text[i]) && !is_letter(text[i - 1])) add(i);
  }
  return places;
}

void addChangedTexts(std::vector<data_t>& values, const std::string& text) {
  constexpr std::size_t MOST = 6; // places in one string
  std::vector<std::size_t> places = placesIn(text);
  places.resize(std::min(places.size(), MOST));
  for (const std::size_t place : places) {
    std::string changed = text;
    changed[place] = otherCharacter(changed[place]);
    values.emplace_back(changed.c_str());
  }
  values.emplace_back((text + "x").c_str());
}

} // namespace

Message copyOf(const Message& message) {
  return Message(data_t(message.getPayload()), message.getMetadataMap().copy());
}

const data_t* valueAt(const Message& message, const path_t& path) {
  std::size_t next = 1;
  const data_t* value = &message.getPayload();
  if (path.front().key == METADATA) {
    if (path.size() == 1) return nullptr; // no value, but a map
    value = message.getMetadataMap().find_value(data_t(path[1].key.c_str()));
    next = 2;
  }
  for (; value != nullptr && next < path.size(); ++next) value = childOf(*value, path[next]);
  return value;
}

void apply(Message& message, const change_t& change) {
  if (!change.value) return remove(message, change.path);
  if (data_t* const value = mutableValueAt(message, change.path); value != nullptr) {
    *value = *change.value;
  } else if (map_t* const map = mapAround(message, change.path); map != nullptr) {
    (*map)[data_t(change.path.back().key.c_str())] = *change.value;
  }
}

std::vector<data_t> changedValues(const data_t& value) {
  std::vector<data_t> values;
  switch (value.type_tag()) {
    case VLT_TAG_EMPTY:
      values.emplace_back(std::int64_t{1});
      break;
    case VLT_TAG_BOOLEAN:
      values.emplace_back(!value.get<bool>());
      break;
    case VLT_TAG_INTEGER: {
      const auto number = value.get<std::int64_t>();
      values.emplace_back(number == std::numeric_limits<std::int64_t>::max() ? number - 1
                                                                             : number + 1);
      break;
    }
    case VLT_TAG_DOUBLE: {
      const double number = value.get<double>();
      values.emplace_back(number + 1 == number ? number / 2 : number + 1);
      break;
    }
    case VLT_TAG_STRING:
      addChangedTexts(values, text_or_empty(value.get<const char*>()));
      break;
    default:
      break;
  }
  return values;
}

} // namespace com::velanto::connectivity::tools
