// Measurement: (1) source, id  (2) the source's id  (3) time, type  (4) builder
//              (5) optional dates  (6) of all that is left, fragments gathered, the rest copied
// The order is behaviour: the first field that is missing or wrong is the one reported.
#include "codec/conversions/measurement.hpp"

#include <stdexcept>

#include "codec/constants.hpp"
#include "codec/payload_fields.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

std::unique_ptr<TivraMessageBuilder> convertMeasurement(PulsarMessageDisassembler& notification) {
  return notification.getFault().orThrow(tryConvertMeasurement(notification));
}

std::unique_ptr<TivraMessageBuilder> tryConvertMeasurement(
    PulsarMessageDisassembler& notification) {
  Fault& fault = notification.getFault();
  data_t source = takeField(notification, DATA_T_source);
  data_t id = takeField(notification, DATA_T_id);
  data_t sourceId = reduceToId(std::move(source), notification);
  const double time = takeTime(notification);
  data_t type = takeField(notification, DATA_T_type);
  noteUnlessStrings({{"id", id}, {"source", sourceId}, {"type", type}}, fault);
  if (fault) return nullptr;

  auto builder = std::make_unique<MeasurementMessageBuilder>(
      std::move(id), std::move(sourceId), time, std::move(type), notification.getSpareParts());
  // Not "firstOccurrenceTime": it has no meaning for measurements and is copied over as it stands.
  convertDateTimePayloadElement(DATA_T_creationTime, notification, *builder);
  convertDateTimePayloadElement(DATA_T_lastUpdated, notification, *builder);

  notification.extractRemainingPayload().drain([&](map_entry_t&& entry) {
    if (builder->tryAddFragment(entry.value, notification.getSpareParts())) return;
    builder->fields.assign(std::move(entry));
  });
  return builder;
}

MeasurementMessageBuilder::MeasurementMessageBuilder(data_t&& id, data_t&& source, double time,
                                                     data_t&& type, SpareParts&& spares)
    : TivraMessageBuilder(std::move(id), MEASUREMENT_TYPE_DATA_T.copy(), spares.lend()) {
  ensureValueDataTIsString("source", source);
  addField(DATA_T_source, std::move(source), spares);
  addField(DATA_T_time, data_t(time), spares);
  ensureValueDataTIsString("type", type);
  addField(DATA_T_type, std::move(type), spares);
}

boost::optional<std::pair<data_t, data_t>> MeasurementMessageBuilder::tryAddMeasurementFragment(
    std::pair<data_t, data_t>&& entry) {
  if (!tryAddFragment(entry.second)) return std::move(entry);
  return boost::none;
}

bool MeasurementMessageBuilder::tryAddFragment(data_t& value, SpareParts&& spares) {
  if (value.type_tag() != VLT_TAG_MAP) return false;
  auto& fragment = value.get<map_t>();
  if (!isValidFragment(fragment)) return false;
  spares.keep(std::move(fragment).drain([&](map_entry_t&& series) {
    series.value = createMeasurementValue(std::move(series.value.get<map_t>()), spares.lend());
    measurements.insert(std::move(series));
  }));
  return true;
}

bool MeasurementMessageBuilder::isValidFragment(map_t const& fragment) {
  for (const auto& [name, series] : fragment) {
    if (series.type_tag() != VLT_TAG_MAP || !isValidSeriesValue(series.get<map_t>())) return false;
  }
  return true;
}

bool MeasurementMessageBuilder::isValidSeriesValue(map_t const& series) {
  const data_t* const value = series.find_value(DATA_T_value);
  return value != nullptr && dataTConvertableToFloat(*value);
}

map_t createMeasurementValue(map_t&& series, SpareParts&& spares) {
  MeasurementValueBuilder builder(spares.takeMap());
  const auto add = [&](map_entry_t&& entry) { builder.add(std::move(entry)); };
  if (!series.extract(DATA_T_value, add)) {
    throw std::runtime_error("'value' key missing from measurement value");
  }
  series.extract(DATA_T_units, add);
  builder.add(DATA_T_params.with(std::move(series)));
  return std::move(builder).getResult();
}

MeasurementValueBuilder::MeasurementValueBuilder(data_t&& value) {
  add(DATA_T_value.with(std::move(value)));
}

MeasurementValueBuilder::MeasurementValueBuilder(map_t&& emptied)
    : measurementValue_(std::move(emptied)) {}

void MeasurementValueBuilder::add(map_entry_t&& entry) { measurementValue_.add(std::move(entry)); }

void MeasurementValueBuilder::setUnits(data_t&& units) {
  measurementValue_.assign(DATA_T_units.with(std::move(units)));
}

void MeasurementValueBuilder::setParams(map_t&& params) {
  measurementValue_.assign(DATA_T_params.with(std::move(params)));
}

} // namespace com::velanto::connectivity::plugins::pulsar
