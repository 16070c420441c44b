// The five conversions, once for all trees. Each step uses a Tree, which each library's own file
// implements with that library's own means:
//
//   value_t                                a value
//   find(object, key)                      the value, or null
//   take(object, key)                      removes and returns it, if it is there
//   isObject, isText, isInteger, isNumber  kinds
//   text(value)                            a view of a NUL-terminated text
//   kindName(value)                        the host's name for the kind, null for none
//   object(capacity), number(double), copyOf(view)      new values
//   add(object, key, value)                sets a key that is not there yet
//   put(object, key, value)                sets a key that may be there
//   drain(object, visit)                   hands over each entry; the object is not used again
//   valueOf(entry), putEntry(object, entry), insertEntry(object, entry, value)
//                                          move an entry with its key; insertEntry keeps what is there
//   every(object, test)                    whether the test holds for all values
//   size(object)
#ifndef VLT_BENCH_PEERS_CONVERSION_HPP
#define VLT_BENCH_PEERS_CONVERSION_HPP

#include <utility>

#include "bench/peers/rules.hpp"
#include "bench/settings.hpp"

namespace com::velanto::connectivity::bench::peers {

template <class Tree>
class Conversion {
 public:
  using value_t = typename Tree::value_t;

  // `payload` and `metadata` become the event's, unless there is no path. Throws
  // std::runtime_error. Both are then in any state, but `id` has a copy of the notification's id,
  // if that is a string.
  static void convert(Tree tree, value_t& payload, value_t& metadata,
                      std::optional<std::string>& id) {
    const value_t* const path = tree.find(metadata, "pulsarPath");
    if (path == nullptr) return;
    if (const value_t* const own = tree.find(payload, "id"); own != nullptr && tree.isText(*own)) {
      id = std::string(tree.text(*own));
    }
    Conversion conversion(tree, payload);
    if (!tree.isText(*path)) refuseKind("string", tree.kindName(*path));
    const std::string_view segment = typeSegment(tree.text(*path));
    const bool is_measurement = segment.starts_with("measurements");
    const char* const type = conversion.byKind(segment);
    value_t event_metadata = tree.object(2);
    tree.add(event_metadata, "vlt.type", tree.copyOf(type));
    tree.add(event_metadata, "vlt.channel",
             tree.copyOf(is_measurement ? MEASUREMENTS_CHANNEL : DEVICES_CHANNEL));
    tree.put(conversion.fields_, "tenantId", tree.copyOf(TENANT));
    if (tree.find(conversion.fields_, "measurements") == nullptr) {
      tree.add(conversion.fields_, "measurements", std::move(conversion.series_));
    }
    payload = std::move(conversion.fields_);
    metadata = std::move(event_metadata);
  }

 private:
  Conversion(Tree tree, value_t& payload)
      : tree_(std::move(tree)),
        payload_(payload),
        // Beyond its own fields, an event has a tenant and measurements.
        fields_(tree_.object(tree_.size(payload) + 2)),
        series_(tree_.object(0)) {}

  const char* byKind(std::string_view segment) {
    if (segment.starts_with("alarms")) return alarm();
    if (segment.starts_with("events")) return event();
    if (segment.starts_with("measurements")) return measurement();
    if (segment.starts_with("managedobjects")) return managedObject();
    if (segment.starts_with("operations")) return operation();
    refuseSegment(segment);
  }

  value_t take(const char* key) { return takeFrom(payload_, key, IN_PAYLOAD); }
  value_t takeFrom(value_t& object, const char* key, const char* where) {
    auto value = tree_.take(object, key);
    if (!value) refuseMissing(key, where);
    return std::move(*value);
  }
  value_t takeSourceId(value_t& source) {
    if (!tree_.isObject(source)) refuseKindOf("source", "map", tree_.kindName(source));
    return takeFrom(source, "id", IN_SOURCE);
  }
  const char* textOf(const char* key, const value_t& value) {
    if (!tree_.isText(value)) refuseKindOf(key, "string", tree_.kindName(value));
    return tree_.text(value).data();
  }
  double takeTime() {
    const value_t time = take("time");
    return requireTime(textOf("time", time));
  }
  // Checks and adds a field that is not there yet.
  void addText(const char* key, value_t&& value) { addText(key, key, std::move(value)); }
  void addText(const char* key, const char* reported, value_t&& value) {
    if (!tree_.isText(value)) refuseNoString(reported);
    tree_.add(fields_, key, std::move(value));
  }
  void convertDate(const char* key) {
    auto value = tree_.take(payload_, key);
    if (!value) return;
    if (tree_.isText(*value)) {
      if (const auto seconds = readTime(tree_.text(*value).data())) {
        return tree_.put(fields_, key, tree_.number(*seconds));
      }
    }
    tree_.put(fields_, key, std::move(*value));
  }
  void carryOverRest() {
    tree_.drain(payload_, [this](auto&& entry) {
      tree_.putEntry(fields_, std::forward<decltype(entry)>(entry));
    });
  }

  const char* event() {
    value_t source = take("source");
    value_t id = take("id");
    value_t source_id = takeSourceId(source);
    value_t text = take("text");
    const double time = takeTime();
    value_t type = take("type");
    addText("id", std::move(id));
    addText("source", std::move(source_id));
    addText("text", std::move(text));
    tree_.add(fields_, "firstOccurrenceTime", tree_.number(time));
    addText("type", std::move(type));
    for (const char* date : {"creationTime", "firstOccurrenceTime", "lastUpdated"}) {
      convertDate(date);
    }
    carryOverRest();
    return "com.tivra.ostrovia.Event";
  }

  const char* alarm() {
    value_t source = take("source");
    value_t id = take("id");
    value_t count = take("count");
    if (!tree_.isInteger(count)) refuseKindOf("count", "integer", tree_.kindName(count));
    value_t severity = take("severity");
    requireOneOf(SEVERITIES, textOf("severity", severity), "alarm severity");
    value_t source_id = takeSourceId(source);
    value_t status = take("status");
    requireOneOf(ALARM_STATES, textOf("status", status), "alarm status");
    value_t text = take("text");
    const double time = takeTime();
    value_t type = take("type");
    addText("id", std::move(id));
    tree_.add(fields_, "count", std::move(count));
    tree_.add(fields_, "severity", std::move(severity));
    addText("source", "id", std::move(source_id));
    tree_.add(fields_, "status", std::move(status));
    addText("text", std::move(text));
    tree_.add(fields_, "time", tree_.number(time));
    addText("type", std::move(type));
    for (const char* date : {"creationTime", "firstOccurrenceTime", "lastUpdated"}) {
      convertDate(date);
    }
    carryOverRest();
    return "com.tivra.ostrovia.Alarm";
  }

  const char* operation() {
    value_t source = take("source");
    value_t device = take("deviceId");
    value_t source_id = takeSourceId(source);
    value_t status = take("status");
    requireOneOf(OPERATION_STATES, textOf("status", status), "operation status");
    addText("id", std::move(device));
    addText("source", std::move(source_id));
    tree_.add(fields_, "status", std::move(status));
    for (const char* date : {"creationTime", "firstOccurrenceTime", "lastUpdated"}) {
      convertDate(date);
    }
    carryOverRest();
    return "com.tivra.ostrovia.Operation";
  }

  const char* measurement() {
    value_t source = take("source");
    value_t id = take("id");
    value_t source_id = takeSourceId(source);
    const double time = takeTime();
    value_t type = take("type");
    addText("id", std::move(id));
    addText("source", std::move(source_id));
    tree_.add(fields_, "time", tree_.number(time));
    addText("type", std::move(type));
    for (const char* date : {"creationTime", "lastUpdated"}) convertDate(date);
    tree_.drain(payload_, [this](auto&& entry) {
      value_t& value = tree_.valueOf(entry);
      if (!isFragment(value)) {
        return tree_.putEntry(fields_, std::forward<decltype(entry)>(entry));
      }
      tree_.drain(value, [this](auto&& series) {
        value_t content = measurementValue(tree_.valueOf(series));
        tree_.insertEntry(series_, std::forward<decltype(series)>(series), std::move(content));
      });
    });
    return "com.tivra.ostrovia.Measurement";
  }
  bool isFragment(const value_t& value) {
    return tree_.isObject(value) && tree_.every(value, [this](const value_t& series) {
      if (!tree_.isObject(series)) return false;
      const value_t* const number = tree_.find(series, "value");
      return number != nullptr && isNumeric(*number);
    });
  }
  bool isNumeric(const value_t& value) {
    return tree_.isNumber(value) ||
           (tree_.isText(value) && isNumericText(tree_.text(value).data()));
  }
  value_t measurementValue(value_t& series) {
    value_t result = tree_.object(3);
    tree_.add(result, "value", std::move(*tree_.take(series, "value")));
    if (auto units = tree_.take(series, "units")) tree_.add(result, "units", std::move(*units));
    tree_.add(result, "params", std::move(series));
    return result;
  }

  const char* managedObject() {
    value_t id = take("id");
    value_t name = take("name");
    const auto type = tree_.take(payload_, "type");
    addText("id", std::move(id));
    addText("source", std::move(name));
    if (type && !tree_.isText(*type)) refuseNoString("type");
    rename("o6a_SupportedOperations", "supportedOperations");
    rename("o6a_SupportedMeasurements", "supportedMeasurements");
    position();
    rename("childDevices", "childDeviceIds");
    rename("childAssets", "childAssetIds");
    rename("childAdditions", "childAdditionIds");
    rename("deviceParents", "deviceParentIds");
    rename("assetParents", "assetParentIds");
    rename("additionParents", "additionParentIds");
    for (const char* date : {"creationTime", "lastUpdated"}) convertDate(date);
    carryOverRest();
    return "com.tivra.ostrovia.ManagedObject";
  }
  void rename(const char* from, const char* to) {
    if (auto value = tree_.take(payload_, from)) tree_.put(fields_, to, std::move(*value));
  }
  // Where all components are numbers, the map is the field as it is.
  void position() {
    auto position = tree_.take(payload_, "o6a_Position");
    if (!position || !tree_.isObject(*position) || tree_.size(*position) == 0) return;
    if (tree_.every(*position, [this](const value_t& value) { return isNumeric(value); })) {
      return tree_.put(fields_, "position", std::move(*position));
    }
    value_t components = tree_.object(tree_.size(*position));
    value_t others = tree_.object(tree_.size(*position));
    tree_.drain(*position, [&](auto&& entry) {
      value_t& target = isNumeric(tree_.valueOf(entry)) ? components : others;
      tree_.putEntry(target, std::forward<decltype(entry)>(entry));
    });
    if (tree_.size(components) != 0) tree_.put(fields_, "position", std::move(components));
    tree_.drain(others, [this](auto&& entry) {
      tree_.putEntry(fields_, std::forward<decltype(entry)>(entry));
    });
  }

  Tree tree_;
  value_t& payload_;
  value_t fields_;
  value_t series_;
};

} // namespace com::velanto::connectivity::bench::peers

#endif
