#include "tests/conformance/comparison.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "standin/standin.h"
#include "value/get_visitor.hpp"
#include "value/to_string.hpp"

namespace com::velanto::connectivity::test {

namespace {

std::string describe(const data_t& value) {
  if (value.empty()) return "nothing";
  std::string kind = kind_name(value.type_tag());
  if (value.type_tag() == VLT_TAG_BORROWED_STRING) kind = "borrowed string";
  if (value.is_string() && value.get<const char*>() == nullptr) return kind + " without a text";
  return kind + " " + to_string(value);
}

// The 8 bytes of the content, whatever they mean.
std::uint64_t bitsOf(const data_t& value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value.underlying()->value, sizeof bits);
  return bits;
}

bool sameBits(const data_t& left, const data_t& right) { return bitsOf(left) == bitsOf(right); }

bool sameDouble(const data_t& left, const data_t& right) {
  if (std::isnan(left.get<double>())) return std::isnan(right.get<double>());
  return sameBits(left, right);
}

bool sameText(const char* left, const char* right) {
  if (left == nullptr || right == nullptr) return left == right;
  return std::strcmp(left, right) == 0;
}

bool sameBytes(const buffer_t& left, const buffer_t& right) {
  if (left.size() != right.size()) return false;
  return left.size() == 0 || std::memcmp(left.data(), right.data(), left.size()) == 0;
}

// Of values of one kind that hold no other values.
bool sameContent(const data_t& left, const data_t& right) {
  switch (left.type_tag()) {
    case VLT_TAG_EMPTY:
      return true;
    case VLT_TAG_BOOLEAN:
      return left.get<bool>() == right.get<bool>();
    case VLT_TAG_DOUBLE:
      return sameDouble(left, right);
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      return sameText(left.get<const char*>(), right.get<const char*>());
    case VLT_TAG_BUFFER:
      return sameBytes(left.get<buffer_t>(), right.get<buffer_t>());
    case VLT_TAG_CUSTOM:
      return standin_custom_label(left.get<vlt_underlying_custom_t>()) ==
             standin_custom_label(right.get<vlt_underlying_custom_t>());
    default:
      return sameBits(left, right);
  }
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
    if (sameContent(expected, actual)) return {};
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
