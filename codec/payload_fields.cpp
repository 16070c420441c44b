#include "codec/payload_fields.hpp"

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

#include "codec/timestamps.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

std::runtime_error missing(constant_t const& key, char const* where) {
  return std::runtime_error("Required key '" + std::string(key.text()) + "' missing from " + where);
}

// Always inline: there are two callers, and one of them runs half a dozen times a message.
[[gnu::always_inline]] inline data_t extractRequired(map_t& map, constant_t const& key,
                                                     char const* where,
                                                     PulsarMessageDisassembler& notification) {
  data_t value;
  const bool found = map.extract(key, [&](map_entry_t&& entry) noexcept {
    notification.getSpareParts().keep(key, std::move(entry.key));
    value = std::move(entry.value);
  });
  if (!found) notification.getFault().note(missing(key, where));
  return value;
}

} // namespace

std::runtime_error problemWithKey(char const* key, const std::runtime_error& error) {
  return std::runtime_error("Problem with key '" + std::string(key) + "': " + error.what());
}

void noteNotAString(char const* key, Fault& fault) {
  if (fault) return;
  fault.note(std::runtime_error("Value for key '" + std::string(key) + "' is not a string."));
}

bool dataTConvertableToFloat(data_t const& value) {
  switch (value.type_tag()) {
    case VLT_TAG_DOUBLE:
    case VLT_TAG_INTEGER:
    case VLT_TAG_DECIMAL:
      return true;
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      break;
    default:
      return false;
  }
  const char* const text = text_or_empty(value.get<char const*>());
  char* end = nullptr;
  std::strtod(text, &end);
  return end != text && std::strpbrk(text, "xX") == nullptr;
}

data_t extractField(PulsarMessageDisassembler& notification, constant_t const& key) {
  if (notification.getFault()) return {};
  return extractRequired(notification.getPayloadMap(), key, "message payload", notification);
}

double extractTimeTimestamp(PulsarMessageDisassembler& notification) {
  Fault& fault = notification.getFault();
  const data_t time = extractField(notification, DATA_T_time);
  const char* const text =
      text_or_empty(getFromDataTReportingKey<char const*>(time, "time", fault));
  if (const auto seconds = tryParseTime(text)) return *seconds;
  if (fault) return 0;
  fault.note(
      std::runtime_error("Error parsing timestamp '" + std::string(text) + "' in key 'time'"));
  return 0;
}

data_t extractSourceId(data_t&& source, PulsarMessageDisassembler& notification) {
  auto* const entries = getFromDataTReportingKey<map_t*>(source, "source", notification.getFault());
  if (entries == nullptr) return {};
  data_t id = extractRequired(*entries, DATA_T_id, "source", notification);
  entries->clear();
  notification.getSpareParts().keepMap(std::move(*entries));
  return id;
}

boost::optional<data_t> extractFromMapIfPresent(map_t& map, constant_t const& key) {
  boost::optional<data_t> value;
  map.extract(key, [&](map_entry_t&& entry) noexcept { value = std::move(entry.value); });
  return value;
}

void remapPayloadElement(constant_t const& from, constant_t const& to,
                         PulsarMessageDisassembler& notification, TivraMessageBuilder& builder) {
  auto value = extractFromMapIfPresent(notification.getPayloadMap(), from);
  if (value) builder.fields.assign(to.with(std::move(*value)));
}

void convertDateTimePayloadElement(constant_t const& key, PulsarMessageDisassembler& notification,
                                   TivraMessageBuilder& builder) {
  notification.getPayloadMap().extract(key, [&](map_entry_t&& entry) {
    if (entry.value.is_string()) {
      if (const auto seconds = tryParseTime(entry.value.get<char const*>())) {
        entry.value = data_t(*seconds);
      }
    }
    builder.fields.assign(std::move(entry));
  });
}

void copyOverRemainingPayloadElements(PulsarMessageDisassembler& notification,
                                      TivraMessageBuilder& builder) {
  notification.extractRemainingPayload().drain(
      [&builder](map_entry_t&& entry) { builder.fields.assign(std::move(entry)); });
}

void carryOverDatesAndRemaining(PulsarMessageDisassembler& notification,
                                TivraMessageBuilder& builder) {
  convertDateTimePayloadElement(DATA_T_creationTime, notification, builder);
  convertDateTimePayloadElement(DATA_T_firstOccurrenceTime, notification, builder);
  convertDateTimePayloadElement(DATA_T_lastUpdated, notification, builder);
  copyOverRemainingPayloadElements(notification, builder);
}

} // namespace com::velanto::connectivity::plugins::pulsar
