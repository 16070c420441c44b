#include "codec/payload_fields.hpp"

#include <stdexcept>
#include <string>

#include "codec/constants.hpp"
#include "codec/timestamps.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

boost::optional<data_t> extractFromMapIfPresent(map_t& map, data_t const& key) {
  const map_t::iterator entry = map.find(key);
  if (entry == map.end()) return boost::none;
  boost::optional<data_t> value(std::move((*entry).second));
  map.erase(entry);
  return value;
}

data_t extractFromMapOrThrow(map_t& map, data_t const& key, char const* where) {
  boost::optional<data_t> value = extractFromMapIfPresent(map, key);
  if (!value) {
    throw std::runtime_error("Required key '" + std::string(text_or_empty(key.get<char const*>())) +
                             "' missing from " + where);
  }
  return std::move(*value);
}

double extractTimeTimestampOrThrow(PulsarMessageDisassembler& notification) {
  const data_t time =
      extractFromMapOrThrow(notification.getPayloadMap(), DATA_T_time, IN_MESSAGE_PAYLOAD);
  const char* const text = text_or_empty(getFromDataTReportingKey<char const*>(time, "time"));
  if (const auto seconds = tryParseTime(text)) return *seconds;
  throw std::runtime_error("Error parsing timestamp '" + std::string(text) + "' in key 'time'");
}

data_t extractSourceId(data_t& source) {
  return extractFromMapOrThrow(getFromDataTReportingKey<map_t&>(source, "source"), DATA_T_id,
                               IN_SOURCE);
}

void remapPayloadElement(data_t const& from, data_t&& to, PulsarMessageDisassembler& notification,
                         TivraMessageBuilder& builder) {
  auto value = extractFromMapIfPresent(notification.getPayloadMap(), from);
  if (value) builder.fields[std::move(to)] = std::move(*value);
}

void convertDateTimePayloadElement(data_t const& key, PulsarMessageDisassembler& notification,
                                   TivraMessageBuilder& builder) {
  auto value = extractFromMapIfPresent(notification.getPayloadMap(), key);
  if (!value) return;
  if (value->is_string()) {
    if (const auto seconds = tryParseTime(value->get<char const*>())) *value = data_t(*seconds);
  }
  builder.fields[data_t(key)] = std::move(*value);
}

void copyOverRemainingPayloadElements(PulsarMessageDisassembler& notification,
                                      TivraMessageBuilder& builder) {
  map_t remaining = notification.extractRemainingPayload();
  for (auto [key, value] : remaining) builder.fields[std::move(key)] = std::move(value);
}

} // namespace com::velanto::connectivity::plugins::pulsar
