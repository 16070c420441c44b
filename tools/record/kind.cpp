#include "tools/record/kind.hpp"

#include <array>

#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::array<const char*, KINDS> NAMES = {
    "alarms", "events", "managedobjects", "measurements", "operations", "other path", "no path"};

constexpr std::size_t FIRST_WITHOUT_A_WORD = static_cast<std::size_t>(Kind::OTHER);

// The string under `key`, null when there is none.
const char* textUnder(const Message& message, const hashed_key_t& key) noexcept {
  const data_t* const found = message.getMetadataMap().find_value(key);
  if (found == nullptr || !found->is_string()) return nullptr;
  return text_or_empty(found->get<const char*>());
}

} // namespace

const char* nameOf(Kind kind) noexcept { return NAMES[static_cast<std::size_t>(kind)]; }

Kind kindOfPath(std::string_view path) noexcept {
  for (int slash = 0; slash < 2; ++slash) {
    const std::size_t at = path.find('/');
    if (at == std::string_view::npos) return Kind::OTHER;
    path.remove_prefix(at + 1);
  }
  for (std::size_t i = 0; i < FIRST_WITHOUT_A_WORD; ++i) {
    if (path.starts_with(NAMES[i])) return static_cast<Kind>(i);
  }
  return Kind::OTHER;
}

MetadataReader::MetadataReader()
    : path_("pulsarPath"), type_("vlt.type"), channel_("vlt.channel") {}

Kind MetadataReader::kindOf(const Message& message) const noexcept {
  const char* const path = textUnder(message, path_);
  return path == nullptr ? Kind::NONE : kindOfPath(path);
}

bool MetadataReader::isTyped(const Message& message) const noexcept {
  return message.getMetadataMap().find_value(type_) != nullptr;
}

std::string_view MetadataReader::channelOf(const Message& message) const noexcept {
  return text_or_empty(textUnder(message, channel_));
}

} // namespace com::velanto::connectivity::tools
