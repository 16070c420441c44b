// Measurements: readings of a device. The notification groups them in fragments,
//
//   o6a_Temperature: { T: { value: 21.5, units: C, … }, … }
//
// and the event has them by series alone: measurements: { T: { value, units, params } }. Fragment
// names are not kept, so the series of all fragments share one name space.
#ifndef VLT_CODEC_CONVERSIONS_MEASUREMENT_HPP
#define VLT_CODEC_CONVERSIONS_MEASUREMENT_HPP

#include <memory>

#include "codec/pulsar_message_disassembler.hpp"
#include "codec/tivra_message_builder.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

// The host event of type "com.tivra.ostrovia.Measurement". `id`, `source` and `type` must be
// strings; `time` is in seconds since the epoch.
class MeasurementMessageBuilder final : public TivraMessageBuilder {
 public:
  MeasurementMessageBuilder(data_t&& id, data_t&& source, double time, data_t&& type,
                            SpareParts& spares);

  // Takes the series of a payload entry's value, if that is a valid fragment, and returns whether it
  // took them. Of two series of one name the first stays. Leaves any other value untouched. Throws
  // std::bad_alloc.
  [[nodiscard]] bool tryAddMeasurementFragment(data_t& candidate, SpareParts& spares);

  // Whether every entry is a map that is a valid series value. True for no entries at all.
  [[nodiscard]] static bool isValidFragment(map_t const& fragment);
  // Whether there is a numeric "value"; other entries do not matter.
  [[nodiscard]] static bool isValidSeriesValue(map_t const& series);
};

// Shapes one measurement value: "value", "units" if there are any, "params". Value and units come
// as entries under these names.
class MeasurementValueBuilder {
 public:
  // `emptied` is a map without entries.
  explicit MeasurementValueBuilder(map_t&& emptied) noexcept
      : measurement_value_(std::move(emptied)) {}
  // Throw std::bad_alloc.
  void setValue(map_entry_t&& value) { add(std::move(value)); }
  void setUnits(map_entry_t&& units) { add(std::move(units)); }
  void setParams(map_t&& params) {
    measurement_value_.add(DATA_T_params.hash(), DATA_T_params.copy(), std::move(params));
  }
  [[nodiscard]] map_t getResult() && noexcept { return std::move(measurement_value_); }

 private:
  void add(map_entry_t&& entry) {
    measurement_value_.add(entry.hash, std::move(entry.key), std::move(entry.value));
  }

  map_t measurement_value_;
};

// The measurement value of a series: every entry but "value" and "units" is in "params", which is the
// series' own table. Throws std::runtime_error "'value' key missing from measurement value".
[[nodiscard]] map_t createMeasurementValue(map_t&& series, SpareParts& spares);

// Consumes the notification. Null for a faulty one, which notes its first fault in the steps' order.
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> convertMeasurement(
    PulsarMessageDisassembler& notification);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
