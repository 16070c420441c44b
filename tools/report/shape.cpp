#include "tools/report/shape.hpp"

#include <set>

#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools::report {

namespace {

constexpr int DEEPEST = 30;

std::uint64_t shapeOf(const data_t& value, int depth);

// A sum, so the order of the entries does not matter.
std::uint64_t shapeOf(const map_t& map, int depth) {
  std::uint64_t sum = 0;
  for (const auto& [key, value] : map) {
    const std::string_view name = key.is_string() ? text_or_empty(key.get<const char*>()) : "";
    sum += combined(hashOf(name), shapeOf(value, depth));
  }
  return sum;
}

std::uint64_t shapeOf(const data_t& value, int depth) {
  const std::uint64_t kind = value.is_string() ? std::uint64_t{VLT_TAG_STRING} : value.type_tag();
  std::uint64_t content = 0;
  if (depth < DEEPEST && kind == VLT_TAG_MAP) content = shapeOf(value.get<map_t>(), depth + 1);
  if (depth < DEEPEST && kind == VLT_TAG_LIST) {
    std::set<std::uint64_t> elements;
    for (const data_t& element : value.get<list_t>()) elements.insert(shapeOf(element, depth + 1));
    for (const std::uint64_t element : elements) content = combined(content, element);
  }
  return combined(kind, content);
}

} // namespace

std::uint64_t hashOf(std::string_view text) noexcept {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  return hash;
}

std::uint64_t combined(std::uint64_t one, std::uint64_t other) noexcept {
  std::uint64_t mixed = one * 0x9E3779B97F4A7C15 + other;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
  return mixed ^ (mixed >> 31);
}

std::uint64_t shapeOf(const Message& message) {
  return combined(shapeOf(message.getMetadataMap(), 0), shapeOf(message.getPayload(), 0));
}

} // namespace com::velanto::connectivity::tools::report
