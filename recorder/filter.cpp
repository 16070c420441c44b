#include "recorder/filter.hpp"

#include <limits>
#include <string_view>

#include "value/get_visitor.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::recorder {

namespace {

// The string under a key, or null. Compares the keys one by one: metadata has few entries, and to
// hash a string is a call of the host.
const char* textUnder(const map_t& metadata, std::string_view key) noexcept {
  for (const map_slot_t& slot : slots_of(metadata.table())) {
    if (slot.key.type_tag() != VLT_TAG_STRING) continue;
    if (text_or_empty(*slot.key.get_if<const char*>()) != key) continue;
    return slot.value.is_string() ? text_or_empty(*slot.value.get_if<const char*>()) : nullptr;
  }
  return nullptr;
}

// The rest after the first '/'; empty without one.
std::string_view afterFirstSlash(std::string_view path) noexcept {
  const std::size_t slash = path.find('/');
  return slash == std::string_view::npos ? "" : path.substr(slash + 1);
}

// The bit of the message's kind; 0 when it has none. The word begins the segment after the second
// slash.
unsigned kindOf(const Message& message, const char* path) noexcept {
  const char* const type = path == nullptr ? textUnder(message.getMetadataMap(), "vlt.type") : "";
  const std::string_view word =
      path == nullptr ? "" : afterFirstSlash(afterFirstSlash(std::string_view(path)));
  for (std::size_t i = 0; i < KINDS.size(); ++i) {
    const bool is_it = path == nullptr ? std::string_view(text_or_empty(type)) == KINDS[i].type
                                       : word.starts_with(KINDS[i].word);
    if (is_it) return 1U << i;
  }
  return 0;
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
  const char* const path = textUnder(message.getMetadataMap(), "pulsarPath");
  if (!path_prefix_.empty() &&
      (path == nullptr || !std::string_view(path).starts_with(path_prefix_))) {
    return false;
  }
  return kinds_ == 0 || (kinds_ & kindOf(message, path)) != 0;
}

} // namespace com::velanto::connectivity::recorder
