// Measurement: (1) source, id  (2) the source's id  (3) time, type  (4) builder
//              (5) optional dates  (6) of all that is left, fragments gathered, the rest copied
// The order is behaviour: the first field that is missing or wrong is the one reported.
#include "codec/conversions/measurement.hpp"

#include <array>
#include <cstddef>
#include <stdexcept>

#include "codec/constants.hpp"
#include "codec/payload_fields.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

// The entries of the values that were found when a fragment was looked through, in the order of its
// series: so that they need not be looked up twice. Of very large fragments the first ones.
class FoundValues {
 public:
  void add(const map_entry_t* value) noexcept {
    if (count_ < values_.size()) values_[count_++] = value;
  }
  // Null behind the last.
  [[nodiscard]] const map_entry_t* next() noexcept {
    return next_ < count_ ? values_[next_++] : nullptr;
  }

 private:
  std::array<const map_entry_t*, 8> values_; // the first `count_` mean something
  std::size_t count_ = 0;
  std::size_t next_ = 0;
};

// The entry of the "value" of a series if that is numeric, otherwise null.
const map_entry_t* findNumericValue(map_t const& series) {
  const map_entry_t* const value = series.find_entry(DATA_T_value);
  return value != nullptr && dataTConvertableToFloat(value->value) ? value : nullptr;
}

bool findNumericValues(map_t const& fragment, FoundValues& found) {
  return fragment.all_entries([&](const map_entry_t& series) {
    if (series.value.type_tag() != VLT_TAG_MAP) return false;
    const map_entry_t* const value = findNumericValue(series.value.get<map_t>());
    if (value != nullptr) found.add(value);
    return value != nullptr;
  });
}

// The measurement value of a series, in which `value` was found.
map_t measurementValueOf(map_t&& series, const map_entry_t& value, SpareParts& spares) {
  MeasurementValueBuilder builder(spares.takeMap());
  const auto add = [&](map_entry_t&& entry) noexcept { builder.add(std::move(entry)); };
  series.extract(value, add);
  series.extract(DATA_T_units, add);
  builder.addParams(std::move(series));
  return std::move(builder).getResult();
}

} // namespace

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

  notification.getPayloadMap().extract_if([&](map_entry_t&& entry) {
    return builder->tryAddFragment(entry.value, notification.getSpareParts());
  });
  copyOverRemainingPayloadElements(notification, *builder);
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

bool MeasurementMessageBuilder::tryAddFragment(data_t& candidate, SpareParts&& spares) {
  if (candidate.type_tag() != VLT_TAG_MAP) return false;
  auto& fragment = candidate.get<map_t>();
  FoundValues found;
  if (!findNumericValues(fragment, found)) return false;
  spares.keep(std::move(fragment).drain([&](map_entry_t&& entry) {
    auto& series = entry.value.get<map_t>();
    const map_entry_t* value = found.next();
    if (value == nullptr) value = series.find_entry(DATA_T_value);
    entry.value = measurementValueOf(std::move(series), *value, spares);
    measurements.insert(std::move(entry));
  }));
  return true;
}

bool MeasurementMessageBuilder::isValidFragment(map_t const& fragment) {
  FoundValues unused;
  return findNumericValues(fragment, unused);
}

bool MeasurementMessageBuilder::isValidSeriesValue(map_t const& series) {
  return findNumericValue(series) != nullptr;
}

map_t createMeasurementValue(map_t&& series, SpareParts&& spares) {
  const map_entry_t* const value = series.find_entry(DATA_T_value);
  if (value == nullptr) throw std::runtime_error("'value' key missing from measurement value");
  return measurementValueOf(std::move(series), *value, spares);
}

MeasurementValueBuilder::MeasurementValueBuilder(data_t&& value)
    : measurementValue_(map_t::with_first_table()) {
  add(DATA_T_value.with(std::move(value)));
}

MeasurementValueBuilder::MeasurementValueBuilder(map_t&& emptied)
    : measurementValue_(emptied.table() == nullptr ? map_t::with_first_table()
                                                   : std::move(emptied)) {}

void MeasurementValueBuilder::add(map_entry_t&& entry) noexcept {
  measurementValue_.add_to_first_table(entry.hash, std::move(entry.key), std::move(entry.value));
}

void MeasurementValueBuilder::addParams(map_t&& params) {
  measurementValue_.add_to_first_table(DATA_T_params.hash(), DATA_T_params.copy(),
                                       std::move(params));
}

void MeasurementValueBuilder::setUnits(data_t&& units) {
  measurementValue_.assign(DATA_T_units.with(std::move(units)));
}

void MeasurementValueBuilder::setParams(map_t&& params) {
  measurementValue_.assign(DATA_T_params.with(std::move(params)));
}

} // namespace com::velanto::connectivity::plugins::pulsar
