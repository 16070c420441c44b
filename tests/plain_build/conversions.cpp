// Each conversion: (1) takes its required fields in a fixed order  (2) checks and sets them in the
// order of the event  (3) moves optional fields  (4) moves the rest. The first fault in that order
// is the one in the log, so the order is behaviour.
#include "tests/plain_build/conversions.hpp"

#include <initializer_list>
#include <stdexcept>
#include <utility>

#include "tests/plain_build/fields.hpp"
#include "tests/plain_build/readings.hpp"

namespace plain_build {
namespace {

bool isOneOf(const char* word, std::initializer_list<const char*> words) {
  for (const char* const known : words) {
    if (std::string(known) == word) return true;
  }
  return false;
}

// Takes the field `key`, which must be one of `words`. `what` names the field in the text for others.
Value takeWord(Table& payload, const char* key, const char* what,
               std::initializer_list<const char*> words) {
  Value word = takeRequired(payload, key);
  requireFieldKind(word.raw(), VLT_TAG_STRING, key);
  if (isOneOf(textOf(word.raw()), words)) return word;
  throw std::runtime_error(std::string("Unrecognized ") + what + ": " + textOf(word.raw()));
}

Event convertEvent(Table& payload) {
  Value source = takeRequired(payload, "source");
  Value id = takeRequired(payload, "id");
  Value source_id = takeSourceId(std::move(source));
  Value text = takeRequired(payload, "text");
  const double time = takeTime(payload);
  Value type = takeRequired(payload, "type");

  Event event{"com.tivra.ostrovia.Event", {}, {}};
  setString(event.fields, "id", std::move(id));
  setString(event.fields, "source", std::move(source_id));
  setString(event.fields, "text", std::move(text));
  event.fields.set("firstOccurrenceTime", Value::ofReal(time));
  setString(event.fields, "type", std::move(type));

  moveTime(payload, event.fields, "creationTime");
  moveTime(payload, event.fields, "firstOccurrenceTime");
  moveTime(payload, event.fields, "lastUpdated");
  moveRest(payload, event.fields);
  return event;
}

// A status without a text has a fault of its own, unlike any other word.
Value takeAlarmStatus(Table& payload) {
  const Slot* const status = findSlot(payload.raw(), "status");
  if (status != nullptr && isString(status->value) && status->value.value.string == nullptr) {
    throw std::runtime_error(NULL_TEXT);
  }
  return takeWord(payload, "status", "alarm status", {"ACTIVE", "ACKNOWLEDGED", "CLEARED"});
}

Event convertAlarm(Table& payload) {
  Value source = takeRequired(payload, "source");
  Value id = takeRequired(payload, "id");
  const Value count = takeRequired(payload, "count");
  requireFieldKind(count.raw(), VLT_TAG_INTEGER, "count");
  Value severity =
      takeWord(payload, "severity", "alarm severity", {"CRITICAL", "MAJOR", "MINOR", "WARNING"});
  Value source_id = takeSourceId(std::move(source));
  Value status = takeAlarmStatus(payload);
  Value text = takeRequired(payload, "text");
  const double time = takeTime(payload);
  Value type = takeRequired(payload, "type");

  Event event{"com.tivra.ostrovia.Alarm", {}, {}};
  setString(event.fields, "id", std::move(id));
  event.fields.set("count", Value::ofInteger(count.raw().value.integer));
  event.fields.set("severity", Value::ofText(textOf(severity.raw())));
  setString(event.fields, "source", std::move(source_id), "id");
  event.fields.set("status", Value::ofText(textOf(status.raw())));
  setString(event.fields, "text", std::move(text));
  event.fields.set("time", Value::ofReal(time));
  setString(event.fields, "type", std::move(type));

  moveTime(payload, event.fields, "creationTime");
  moveTime(payload, event.fields, "firstOccurrenceTime");
  moveTime(payload, event.fields, "lastUpdated");
  moveRest(payload, event.fields);
  return event;
}

bool isSeries(const RawValue& value) {
  if (value.tag != VLT_TAG_MAP) return false;
  const Slot* const measured = findSlot(value.value.map, "value");
  return measured != nullptr && isNumeric(measured->value);
}

// A map with nothing but series; one without entries is a fragment, too.
bool isFragment(const RawValue& value) {
  if (value.tag != VLT_TAG_MAP) return false;
  for (const Slot& slot : slotsOf(value.value.map)) {
    if (isLive(slot) && !isSeries(slot.value)) return false;
  }
  return true;
}

Value measurementOf(Value series) {
  Table rest(series.release().value.map);
  Table measurement;
  measurement.set("value", *rest.take("value"));
  moveAs(rest, "units", measurement, "units");
  measurement.set("params", rest.toValue());
  return measurement.toValue();
}

// Of two series with the same name the first stays.
void addFragment(Value fragment, Table& measurements) {
  Table all_series(fragment.release().value.map);
  for (Entry& series : all_series.takeAll()) {
    measurements.add(std::move(series.key), measurementOf(std::move(series.value)));
  }
}

Event convertMeasurement(Table& payload) {
  Value source = takeRequired(payload, "source");
  Value id = takeRequired(payload, "id");
  Value source_id = takeSourceId(std::move(source));
  const double time = takeTime(payload);
  Value type = takeRequired(payload, "type");

  Event event{"com.tivra.ostrovia.Measurement", {}, {}};
  setString(event.fields, "id", std::move(id));
  setString(event.fields, "source", std::move(source_id));
  event.fields.set("time", Value::ofReal(time));
  setString(event.fields, "type", std::move(type));

  moveTime(payload, event.fields, "creationTime");
  moveTime(payload, event.fields, "lastUpdated");
  for (Entry& entry : payload.takeAll()) {
    if (isFragment(entry.value.raw())) {
      addFragment(std::move(entry.value), event.measurements);
    } else {
      event.fields.set(std::move(entry.key), std::move(entry.value));
    }
  }
  return event;
}

// Numeric entries make up the field "position"; the others become fields of their own after it.
void movePosition(Table& payload, Table& fields) {
  std::optional<Value> position = payload.take("o6a_Position");
  if (!position || position->raw().tag != VLT_TAG_MAP) return;
  Table entries(position->release().value.map);
  Table components;
  std::vector<Entry> others;
  for (Entry& entry : entries.takeAll()) {
    if (isNumeric(entry.value.raw())) {
      components.add(std::move(entry.key), std::move(entry.value));
    } else {
      others.push_back(std::move(entry));
    }
  }
  if (!components.empty()) fields.set("position", components.toValue());
  for (Entry& other : others) fields.set(std::move(other.key), std::move(other.value));
}

Event convertManagedObject(Table& payload) {
  Value id = takeRequired(payload, "id");
  Value name = takeRequired(payload, "name");
  const std::optional<Value> type = payload.take("type");

  Event event{"com.tivra.ostrovia.ManagedObject", {}, {}};
  setString(event.fields, "id", std::move(id));
  setString(event.fields, "source", std::move(name));
  if (type) requireString(*type, "type");

  moveAs(payload, "o6a_SupportedOperations", event.fields, "supportedOperations");
  moveAs(payload, "o6a_SupportedMeasurements", event.fields, "supportedMeasurements");
  movePosition(payload, event.fields);
  moveAs(payload, "childDevices", event.fields, "childDeviceIds");
  moveAs(payload, "childAssets", event.fields, "childAssetIds");
  moveAs(payload, "childAdditions", event.fields, "childAdditionIds");
  moveAs(payload, "deviceParents", event.fields, "deviceParentIds");
  moveAs(payload, "assetParents", event.fields, "assetParentIds");
  moveAs(payload, "additionParents", event.fields, "additionParentIds");
  moveTime(payload, event.fields, "creationTime");
  moveTime(payload, event.fields, "lastUpdated");
  moveRest(payload, event.fields);
  return event;
}

// The notification's own "id" stays in the payload, so it replaces the device's at the end.
Event convertOperation(Table& payload) {
  Value source = takeRequired(payload, "source");
  Value device_id = takeRequired(payload, "deviceId");
  Value source_id = takeSourceId(std::move(source));
  Value status = takeWord(payload, "status", "operation status",
                          {"SUCCESSFUL", "FAILED", "EXECUTING", "PENDING"});

  Event event{"com.tivra.ostrovia.Operation", {}, {}};
  setString(event.fields, "id", std::move(device_id));
  setString(event.fields, "source", std::move(source_id));
  event.fields.set("status", Value::ofText(textOf(status.raw())));

  moveTime(payload, event.fields, "creationTime");
  moveTime(payload, event.fields, "firstOccurrenceTime");
  moveTime(payload, event.fields, "lastUpdated");
  moveRest(payload, event.fields);
  return event;
}

} // namespace

Event convert(const std::string& segment, Table& payload) {
  if (segment.starts_with("alarms")) return convertAlarm(payload);
  if (segment.starts_with("events")) return convertEvent(payload);
  if (segment.starts_with("measurements")) return convertMeasurement(payload);
  if (segment.starts_with("managedobjects")) return convertManagedObject(payload);
  if (segment.starts_with("operations")) return convertOperation(payload);
  throw std::runtime_error("Unrecognised Pulsar message type: '" + segment + "'");
}

} // namespace plain_build
