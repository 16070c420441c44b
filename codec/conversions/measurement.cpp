// Measurement: (1) source, id  (2) the source's id  (3) time, type  (4) builder
//              (5) optional dates  (6) all remaining fields: gather fragments, move the rest
// The order is behaviour: the report names the first field that is missing or wrong.
#include "codec/conversions/measurement.hpp"

#include <stdexcept>

#include "codec/payload_fields.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

std::unique_ptr<TivraMessageBuilder> convertMeasurement(PulsarMessageDisassembler& notification) {
  Fault& fault = notification.getFault();
  SpareParts& spares = notification.getSpareParts();
  data_t source = extractField(notification, DATA_T_source);
  data_t& id = notification.holdId(extractField(notification, DATA_T_id));
  data_t source_id = extractSourceId(std::move(source), notification);
  const double time = extractTimeTimestamp(notification);
  data_t type = extractField(notification, DATA_T_type);
  ensureValueDataTIsString("id", id, fault);
  ensureValueDataTIsString("source", source_id, fault);
  ensureValueDataTIsString("type", type, fault);
  if (fault) return nullptr;

  auto builder = std::make_unique<MeasurementMessageBuilder>(std::move(id), std::move(source_id),
                                                             time, std::move(type), spares);
  // Not "firstOccurrenceTime": it has no meaning for measurements and stays as it is.
  convertDateTimePayloadElement(DATA_T_creationTime, notification, *builder);
  convertDateTimePayloadElement(DATA_T_lastUpdated, notification, *builder);
  notification.extractRemainingPayload().drain([&](map_entry_t&& entry) {
    if (builder->tryAddMeasurementFragment(entry.value, spares)) return;
    builder->fields.assign(std::move(entry));
  });
  return builder;
}

MeasurementMessageBuilder::MeasurementMessageBuilder(data_t&& id, data_t&& source, double time,
                                                     data_t&& type, SpareParts& spares)
    : TivraMessageBuilder(std::move(id), MEASUREMENT_TYPE_DATA_T.copy(), spares) {
  addField(DATA_T_source, std::move(source), spares);
  addField(DATA_T_time, data_t(time), spares);
  addField(DATA_T_type, std::move(type), spares);
}

bool MeasurementMessageBuilder::tryAddMeasurementFragment(data_t& candidate, SpareParts& spares) {
  auto* const fragment = candidate.get_if<map_t>();
  if (fragment == nullptr || !isValidFragment(*fragment)) return false;
  spares.keepMap(std::move(*fragment).drain([&](map_entry_t&& entry) {
    entry.value = createMeasurementValue(std::move(entry.value.get<map_t>()), spares);
    measurements.insert(std::move(entry));
  }));
  return true;
}

bool MeasurementMessageBuilder::isValidFragment(map_t const& fragment) {
  for (const map_slot_t& slot : slots_of(fragment.table())) {
    if (!slot.is_live()) continue;
    const auto* const series = slot.value.get_if<map_t>();
    if (series == nullptr || !isValidSeriesValue(*series)) return false;
  }
  return true;
}

bool MeasurementMessageBuilder::isValidSeriesValue(map_t const& series) {
  const data_t* const value = series.find_value(DATA_T_value);
  return value != nullptr && dataTConvertableToFloat(*value);
}

map_t createMeasurementValue(map_t&& series, SpareParts& spares) {
  MeasurementValueBuilder builder(spares.takeMap());
  if (!series.extract(DATA_T_value,
                      [&](map_entry_t&& value) { builder.setValue(std::move(value)); })) {
    throw std::runtime_error("'value' key missing from measurement value");
  }
  series.extract(DATA_T_units, [&](map_entry_t&& units) { builder.setUnits(std::move(units)); });
  builder.setParams(std::move(series));
  return std::move(builder).getResult();
}

} // namespace com::velanto::connectivity::plugins::pulsar
