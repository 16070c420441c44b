#include "tests/conformance/comparison.hpp"

#include <algorithm>
#include <vector>

#include "tools/check/same_content.hpp"
#include "value/get_visitor.hpp"
#include "value/to_string.hpp"

namespace com::velanto::connectivity::test {

namespace {

using tools::check::NotANumber;
using tools::check::sameContent;

std::string describe(const data_t& value) {
  if (value.empty()) return "nothing";
  std::string kind = kind_name(value.type_tag());
  if (value.type_tag() == VLT_TAG_BORROWED_STRING) kind = "borrowed string";
  if (value.is_string() && value.get<const char*>() == nullptr) return kind + " without a text";
  return kind + " " + to_string(value);
}

std::string listDifference(const list_t& expected, const list_t& actual, const std::string& where) {
  if (expected.size() != actual.size()) {
    return where + ": expected " + std::to_string(expected.size()) + " elements, has " +
           std::to_string(actual.size());
  }
  for (std::size_t i = 0; i < expected.size(); ++i) {
    std::string found = difference(expected[i], actual[i], where + "[" + std::to_string(i) + "]");
    if (!found.empty()) return found;
  }
  return {};
}

using Entries = std::vector<std::pair<const data_t*, const data_t*>>;

Entries entriesOf(const map_t& map) {
  Entries entries;
  for (const auto& [key, value] : map) entries.emplace_back(&key, &value);
  return entries;
}

// Counts and places that a host relies on when it looks a text key up.
std::string tableFault(const map_t& map, const Entries& entries, const std::string& where) {
  if (entries.size() != map.size()) return where + ": counts other entries than it has";
  for (const auto& [key, value] : entries) {
    if (key->is_string() && map.find(*key) == map.end()) {
      return where + ": " + describe(*key) + " is not where a lookup finds it";
    }
  }
  return {};
}

} // namespace

std::string difference(const data_t& expected, const data_t& actual, const std::string& where) {
  const std::uint32_t tag = expected.type_tag();
  if (tag == actual.type_tag()) {
    if (tag == VLT_TAG_MAP) return difference(expected.get<map_t>(), actual.get<map_t>(), where);
    if (tag == VLT_TAG_LIST) {
      return listDifference(expected.get<list_t>(), actual.get<list_t>(), where);
    }
    // A case writes a number down as text, which cannot say which bits are meant.
    if (sameContent(expected, actual, NotANumber::anyBits)) return {};
  }
  return where + ": expected " + describe(expected) + ", is " + describe(actual);
}

std::string difference(const map_t& expected, const map_t& actual, const std::string& where) {
  if (expected.table() == nullptr && actual.table() != nullptr) {
    return where + ": expected no table, has " + to_string(actual);
  }
  Entries left = entriesOf(actual);
  if (std::string fault = tableFault(actual, left, where); !fault.empty()) return fault;
  for (const auto& [key, value] : expected) {
    const std::string place = where + "." + to_string(key);
    const data_t& wanted = key; // a binding cannot be captured by every compiler
    const auto same_key = [&wanted](const auto& entry) {
      return difference(wanted, *entry.first, "").empty();
    };
    // Keys of an unknown kind may occur more than once: each is matched with one of its like.
    const auto match = std::find_if(left.begin(), left.end(), same_key);
    if (match == left.end()) return place + ": missing, expected " + describe(value);
    std::string found = difference(value, *match->second, place);
    if (!found.empty()) return found;
    left.erase(match);
  }
  if (left.empty()) return {};
  return where + "." + to_string(*left.front().first) + ": expected no such entry, is " +
         describe(*left.front().second);
}

std::string difference(const Message& expected, const Message& actual, const std::string& where) {
  std::string found =
      difference(expected.getMetadataMap(), actual.getMetadataMap(), where + " metadata");
  if (!found.empty()) return found;
  return difference(expected.getPayload(), actual.getPayload(), where + " payload");
}

} // namespace com::velanto::connectivity::test
