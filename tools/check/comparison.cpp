#include "tools/check/comparison.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "standin/standin.h"
#include "tools/check/values.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

using found_t = std::optional<difference_t>;

// JSON does not show the kind.
std::string shownWithKind(const data_t& value) {
  if (value.empty()) return "an empty value";
  std::string kind = kind_name(value.type_tag());
  if (value.type_tag() == VLT_TAG_BORROWED_STRING) kind = "borrowed string";
  if (value.is_string() && value.get<const char*>() == nullptr) return kind + " without a text";
  return kind + " " + shown(value);
}

bool sameText(const char* left, const char* right) {
  if (left == nullptr || right == nullptr) return left == right;
  return std::strcmp(left, right) == 0;
}

bool sameBuffer(const buffer_t& left, const buffer_t& right) {
  if (left.size() != right.size()) return false;
  return left.size() == 0 || std::memcmp(left.data(), right.data(), left.size()) == 0;
}

// The 8 bytes of the content, of any meaning.
std::uint64_t bitsOf(const data_t& value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value.underlying()->value, sizeof bits);
  return bits;
}

// Two values of one kind that is neither map nor list.
bool sameContent(const data_t& left, const data_t& right) {
  switch (left.type_tag()) {
    case VLT_TAG_EMPTY:
      return true;
    case VLT_TAG_BOOLEAN:
      return left.get<bool>() == right.get<bool>();
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      return sameText(left.get<const char*>(), right.get<const char*>());
    case VLT_TAG_BUFFER:
      return sameBuffer(left.get<buffer_t>(), right.get<buffer_t>());
    case VLT_TAG_CUSTOM:
      return standin_custom_label(left.get<vlt_underlying_custom_t>()) ==
             standin_custom_label(right.get<vlt_underlying_custom_t>());
    default:
      return bitsOf(left) == bitsOf(right);
  }
}

found_t listDifference(const list_t& expected, const list_t& came, const std::string& where) {
  if (expected.size() != came.size()) {
    return difference_t{where, std::to_string(expected.size()) + " elements",
                        std::to_string(came.size()) + " elements"};
  }
  for (std::size_t i = 0; i < expected.size(); ++i) {
    found_t found = difference(expected[i], came[i], where + "[" + std::to_string(i) + "]");
    if (found) return found;
  }
  return {};
}

using entries_t = std::vector<std::pair<const data_t*, const data_t*>>;

entries_t entriesOf(const map_t& map) {
  entries_t entries;
  for (const auto& [key, value] : map) entries.emplace_back(&key, &value);
  return entries;
}

// Counts and places that a host relies on when it looks up a string key.
found_t tableFault(const map_t& map, const entries_t& entries, const std::string& where) {
  if (entries.size() != map.size()) {
    return difference_t{where + ", entries that the table counts", std::to_string(entries.size()),
                        std::to_string(map.size())};
  }
  for (const auto& [key, value] : entries) {
    if (key->is_string() && map.find(*key) == map.end()) {
      return difference_t{where + "." + shown(*key), "an entry that a lookup finds",
                          "an entry in another place"};
    }
  }
  return {};
}

} // namespace

found_t difference(const data_t& expected, const data_t& came, const std::string& where) {
  const std::uint32_t tag = expected.type_tag();
  if (tag == came.type_tag()) {
    if (tag == VLT_TAG_MAP) return difference(expected.get<map_t>(), came.get<map_t>(), where);
    if (tag == VLT_TAG_LIST) {
      return listDifference(expected.get<list_t>(), came.get<list_t>(), where);
    }
    if (sameContent(expected, came)) return {};
  }
  return difference_t{where, shownWithKind(expected), shownWithKind(came)};
}

found_t difference(const map_t& expected, const map_t& came, const std::string& where) {
  if (expected.table() == nullptr && came.table() != nullptr) {
    return difference_t{where, "no table", "a table of " + std::to_string(came.size())};
  }
  entries_t left = entriesOf(came);
  if (found_t fault = tableFault(came, left, where)) return fault;
  for (const auto& [key, value] : expected) {
    const std::string place = where + "." + shown(key);
    const data_t& wanted = key; // not every compiler can capture a binding
    // Keys of an unknown kind may occur more than once: matches each with an equal one.
    const auto match = std::find_if(left.begin(), left.end(), [&wanted](const auto& entry) {
      return !difference(wanted, *entry.first, "");
    });
    if (match == left.end()) return difference_t{place, shownWithKind(value), "no such entry"};
    if (found_t found = difference(value, *match->second, place)) return found;
    left.erase(match);
  }
  if (left.empty()) return {};
  const auto& [key, value] = left.front();
  return difference_t{where + "." + shown(*key), "no such entry", shownWithKind(*value)};
}

found_t difference(const Message& expected, const Message& came, const std::string& where) {
  if (found_t found =
          difference(expected.getMetadataMap(), came.getMetadataMap(), where + " metadata")) {
    return found;
  }
  return difference(expected.getPayload(), came.getPayload(), where + " payload");
}

} // namespace com::velanto::connectivity::tools::check
