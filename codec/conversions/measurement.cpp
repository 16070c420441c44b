// Measurement: (1) source, id  (2) the source's id  (3) time, type  (4) builder
//              (5) optional dates  (6) of all that is left, fragments gathered, the rest copied
// The order is behaviour: the first field that is missing or wrong is the one reported.
#include "codec/conversions/measurement.hpp"

#include <stdexcept>

#include "codec/constants.hpp"
#include "codec/payload_fields.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

std::unique_ptr<TivraMessageBuilder> convertMeasurement(PulsarMessageDisassembler& notification) {
  map_t& payload = notification.getPayloadMap();
  data_t source = extractFromMapOrThrow(payload, DATA_T_source, IN_MESSAGE_PAYLOAD);
  data_t id = extractFromMapOrThrow(payload, DATA_T_id, IN_MESSAGE_PAYLOAD);
  data_t sourceId = extractSourceId(source);
  const double time = extractTimeTimestampOrThrow(notification);
  data_t type = extractFromMapOrThrow(payload, DATA_T_type, IN_MESSAGE_PAYLOAD);

  auto builder = std::make_unique<MeasurementMessageBuilder>(std::move(id), std::move(sourceId),
                                                             time, std::move(type));
  // Not "firstOccurrenceTime": it has no meaning for measurements and is copied over as it stands.
  convertDateTimePayloadElement(DATA_T_creationTime, notification, *builder);
  convertDateTimePayloadElement(DATA_T_lastUpdated, notification, *builder);

  map_t remaining = notification.extractRemainingPayload();
  for (auto [key, value] : remaining) {
    auto entry = builder->tryAddMeasurementFragment({std::move(key), std::move(value)});
    if (entry) builder->fields[std::move(entry->first)] = std::move(entry->second);
  }
  return builder;
}

MeasurementMessageBuilder::MeasurementMessageBuilder(data_t&& id, data_t&& source, double time,
                                                     data_t&& type)
    : TivraMessageBuilder(std::move(id), data_t(MEASUREMENT_TYPE_DATA_T)) {
  ensureValueDataTIsString("source", source);
  fields[data_t(DATA_T_source)] = std::move(source);
  fields[data_t(DATA_T_time)] = data_t(time);
  ensureValueDataTIsString("type", type);
  fields[data_t(DATA_T_type)] = std::move(type);
}

boost::optional<std::pair<data_t, data_t>> MeasurementMessageBuilder::tryAddMeasurementFragment(
    std::pair<data_t, data_t>&& entry) {
  const bool is_fragment =
      entry.second.type_tag() == VLT_TAG_MAP && isValidFragment(entry.second.get<map_t>());
  if (!is_fragment) return std::move(entry);
  for (auto [name, series] : entry.second.get<map_t>()) {
    map_t value = createMeasurementValue(std::move(series.get<map_t>()));
    measurements.insert(std::move(name), data_t(std::move(value)));
  }
  return boost::none;
}

bool MeasurementMessageBuilder::isValidFragment(map_t const& fragment) {
  for (const auto& [name, series] : fragment) {
    if (series.type_tag() != VLT_TAG_MAP || !isValidSeriesValue(series.get<map_t>())) return false;
  }
  return true;
}

bool MeasurementMessageBuilder::isValidSeriesValue(map_t const& series) {
  const map_t::const_iterator value = series.find(DATA_T_value);
  return value != series.end() && dataTConvertableToFloat((*value).second);
}

map_t createMeasurementValue(map_t&& series) {
  boost::optional<data_t> value = extractFromMapIfPresent(series, DATA_T_value);
  if (!value) throw std::runtime_error("'value' key missing from measurement value");
  MeasurementValueBuilder builder(std::move(*value));
  if (auto units = extractFromMapIfPresent(series, DATA_T_units)) {
    builder.setUnits(std::move(*units));
  }
  builder.setParams(std::move(series));
  return std::move(builder).getResult();
}

MeasurementValueBuilder::MeasurementValueBuilder(data_t&& value) {
  measurementValue_[data_t(DATA_T_value)] = std::move(value);
}

void MeasurementValueBuilder::setUnits(data_t&& units) {
  measurementValue_[data_t(DATA_T_units)] = std::move(units);
}

void MeasurementValueBuilder::setParams(map_t&& params) {
  measurementValue_[data_t(DATA_T_params)] = data_t(std::move(params));
}

} // namespace com::velanto::connectivity::plugins::pulsar
