#include "recorder/filter.hpp"

#include <cstring>
#include <limits>
#include <string_view>

#include "value/get_visitor.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::recorder {

namespace {

// The string under a key, or null. Compares the keys one by one: metadata has few entries, and to
// hash a string is a call of the host.
const char* textUnder(const map_t& metadata, const char* key) noexcept {
  for (const map_slot_t& slot : slots_of(metadata.table())) {
    if (slot.key.type_tag() != VLT_TAG_STRING) continue;
    if (std::strcmp(text_or_empty(*slot.key.get_if<const char*>()), key) != 0) continue;
    return slot.value.is_string() ? text_or_empty(*slot.value.get_if<const char*>()) : nullptr;
  }
  return nullptr;
}

bool startsWith(const char* text, std::string_view begin) noexcept {
  return std::strncmp(text, begin.data(), begin.size()) == 0;
}

// The rest after the first '/'; empty without one.
const char* afterSlash(const char* path) noexcept {
  const char* const slash = std::strchr(path, '/');
  return slash == nullptr ? "" : slash + 1;
}

// Spreads the bits of a number over all of the result (the finaliser of splitmix64).
std::uint64_t mix(std::uint64_t bits) noexcept {
  bits += 0x9E3779B97F4A7C15U;
  bits = (bits ^ bits >> 30U) * 0xBF58476D1CE4E5B9U;
  bits = (bits ^ bits >> 27U) * 0x94D049BB133111EBU;
  return bits ^ bits >> 31U;
}

} // namespace

Filter::Filter(const configuration_t& configuration, std::uint64_t run)
    : directions_(configuration.directions),
      kinds_(configuration.kinds),
      path_prefix_(configuration.path_prefix),
      one_in_(configuration.one_in),
      run_(run) {}

bool Filter::takesBatch(std::uint64_t number) const noexcept {
  return mix(mix(run_) ^ number) <= std::numeric_limits<std::uint64_t>::max() / one_in_;
}

bool Filter::takes(const Message& message) const noexcept {
  if (takesAllMessages()) return true;
  const map_t& metadata = message.getMetadataMap();
  if (const char* const path = textUnder(metadata, "pulsarPath")) return takesPath(path);
  return path_prefix_.empty() && takesType(text_or_empty(textUnder(metadata, "vlt.type")));
}

// The kind's word begins the segment after the second slash.
bool Filter::takesPath(const char* path) const noexcept {
  if (!startsWith(path, path_prefix_)) return false;
  if (kinds_ == 0) return true;
  const char* const segment = afterSlash(afterSlash(path));
  for (std::size_t i = 0; i < KINDS.size(); ++i) {
    if ((kinds_ & 1U << i) != 0 && startsWith(segment, KINDS[i].word)) return true;
  }
  return false;
}

bool Filter::takesType(const char* type) const noexcept {
  for (std::size_t i = 0; i < KINDS.size(); ++i) {
    if ((kinds_ & 1U << i) != 0 && type == KINDS[i].type) return true;
  }
  return false;
}

} // namespace com::velanto::connectivity::recorder
