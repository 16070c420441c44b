// Measurements: readings of a device. The notification groups them in fragments,
//
//   o6a_Temperature: { T: { value: 21.5, units: C, … }, … }
//
// and the event has them by series alone: measurements: { T: { value, units, params } }. Fragment
// names are not kept, so the series of all fragments share one name space.
#ifndef VLT_CODEC_CONVERSIONS_MEASUREMENT_HPP
#define VLT_CODEC_CONVERSIONS_MEASUREMENT_HPP

#include <boost/optional.hpp>
#include <memory>
#include <utility>

#include "codec/pulsar_message_disassembler.hpp"
#include "codec/tivra_message_builder.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

// The host event of type "com.tivra.ostrovia.Measurement". `id`, `source` and `type` must be
// strings; `time` is in seconds since the epoch.
class MeasurementMessageBuilder final : public TivraMessageBuilder {
 public:
  MeasurementMessageBuilder(data_t&& id, data_t&& source, double time, data_t&& type,
                            SpareParts&& spares = SpareParts());

  // Takes the series of a payload entry that is a valid fragment; of two series of one name the
  // first stays. Hands any other entry back untouched.
  [[nodiscard]] boost::optional<std::pair<data_t, data_t>> tryAddMeasurementFragment(
      std::pair<data_t, data_t>&& entry);
  // The same for the value of an entry: whether its series were taken.
  [[nodiscard]] bool tryAddFragment(data_t& candidate, SpareParts&& spares = SpareParts());

  // Whether every entry is a map that is a valid series value. True for no entries at all.
  [[nodiscard]] static bool isValidFragment(map_t const& fragment);
  // Whether there is a numeric "value"; nothing else is looked at.
  [[nodiscard]] static bool isValidSeriesValue(map_t const& series);
};

// Shapes one measurement value: "value", "units" if there are any, "params".
class MeasurementValueBuilder {
 public:
  explicit MeasurementValueBuilder(data_t&& value);
  void setUnits(data_t&& units);
  void setParams(map_t&& params);
  // For entries that have these names already, each added once at most; `emptied` has no entries and
  // no table, or one as it is made first.
  explicit MeasurementValueBuilder(map_t&& emptied);
  void add(map_entry_t&& entry) noexcept;
  // Throws std::bad_alloc.
  void addParams(map_t&& params);
  [[nodiscard]] map_t getResult() && noexcept { return std::move(measurementValue_); }

 private:
  map_t measurementValue_;
};

// The measurement value of a series: what is neither "value" nor "units" becomes "params", in the
// series' own table. Throws std::runtime_error "'value' key missing from measurement value".
[[nodiscard]] map_t createMeasurementValue(map_t&& series, SpareParts&& spares = SpareParts());

// Consumes the notification. Throws std::runtime_error naming the first field that is missing or
// wrong, in the order of the steps.
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> convertMeasurement(
    PulsarMessageDisassembler& notification);
// The same, but notes the error in the notification and returns null.
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> tryConvertMeasurement(
    PulsarMessageDisassembler& notification);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
