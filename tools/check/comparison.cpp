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

using found_t = std::optional<mismatch_t>;

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

found_t listMismatch(const list_t& expected, const list_t& actual, const std::string& where) {
  if (expected.size() != actual.size()) {
    return mismatch_t{where, std::to_string(expected.size()) + " elements",
                      std::to_string(actual.size()) + " elements"};
  }
  for (std::size_t i = 0; i < expected.size(); ++i) {
    found_t found = findMismatch(expected[i], actual[i], where + "[" + std::to_string(i) + "]");
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
    return mismatch_t{where + ", entries that the table counts", std::to_string(entries.size()),
                      std::to_string(map.size())};
  }
  for (const auto& [key, value] : entries) {
    if (key->is_string() && map.find(*key) == map.end()) {
      return mismatch_t{where + "." + shown(*key), "an entry that a lookup finds",
                        "an entry in another place"};
    }
  }
  return {};
}

} // namespace

found_t findMismatch(const data_t& expected, const data_t& actual, const std::string& where) {
  const std::uint32_t tag = expected.type_tag();
  if (tag == actual.type_tag()) {
    if (tag == VLT_TAG_MAP) return findMismatch(expected.get<map_t>(), actual.get<map_t>(), where);
    if (tag == VLT_TAG_LIST) {
      return listMismatch(expected.get<list_t>(), actual.get<list_t>(), where);
    }
    if (sameContent(expected, actual)) return {};
  }
  return mismatch_t{where, shownWithKind(expected), shownWithKind(actual)};
}

found_t findMismatch(const map_t& expected, const map_t& actual, const std::string& where) {
  if (expected.table() == nullptr && actual.table() != nullptr) {
    return mismatch_t{where, "no table", "a table of " + std::to_string(actual.size())};
  }
  entries_t left = entriesOf(actual);
  if (found_t fault = tableFault(actual, left, where)) return fault;
  for (const auto& [key, value] : expected) {
    const std::string place = where + "." + shown(key);
    const data_t& wanted = key; // not every compiler can capture a binding
    // Keys of an unknown kind may occur more than once: matches each with an equal one.
    const auto match = std::find_if(left.begin(), left.end(), [&wanted](const auto& entry) {
      return !findMismatch(wanted, *entry.first, "");
    });
    if (match == left.end()) return mismatch_t{place, shownWithKind(value), "no such entry"};
    if (found_t found = findMismatch(value, *match->second, place)) return found;
    left.erase(match);
  }
  if (left.empty()) return {};
  const auto& [key, value] = left.front();
  return mismatch_t{where + "." + shown(*key), "no such entry", shownWithKind(*value)};
}

found_t findMismatch(const Message& expected, const Message& actual, const std::string& where) {
  if (found_t found =
          findMismatch(expected.getMetadataMap(), actual.getMetadataMap(), where + " metadata")) {
    return found;
  }
  return findMismatch(expected.getPayload(), actual.getPayload(), where + " payload");
}

} // namespace com::velanto::connectivity::tools::check
