#include "tests/plain_build/fields.hpp"

#include <stdexcept>
#include <utility>

#include "tests/plain_build/readings.hpp"

namespace plain_build {
namespace {

Value takeFrom(Table& table, const char* key, const char* name_of_table) {
  std::optional<Value> value = table.take(key);
  if (value) return std::move(*value);
  throw std::runtime_error(std::string("Required key '") + key + "' missing from " + name_of_table);
}

} // namespace

Value takeRequired(Table& payload, const char* key) {
  return takeFrom(payload, key, "message payload");
}

Value takeSourceId(Value source) {
  requireFieldKind(source.raw(), VLT_TAG_MAP, "source");
  Table entries(source.release().value.map);
  return takeFrom(entries, "id", "source");
}

double takeTime(Table& payload) {
  const Value time = takeRequired(payload, "time");
  requireFieldKind(time.raw(), VLT_TAG_STRING, "time");
  const std::optional<double> seconds = secondsOf(textOf(time.raw()));
  if (seconds) return *seconds;
  throw std::runtime_error(std::string("Error parsing timestamp '") + textOf(time.raw()) +
                           "' in key 'time'");
}

void requireFieldKind(const RawValue& value, uint32_t tag, const char* key) {
  try {
    requireKind(value, tag);
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(std::string("Problem with key '") + key + "': " + error.what());
  }
}

void requireString(const Value& value, const char* name_in_error) {
  if (isString(value.raw())) return;
  throw std::runtime_error(std::string("Value for key '") + name_in_error + "' is not a string.");
}

void setString(Table& fields, const char* key, Value value, const char* name_in_error) {
  requireString(value, name_in_error);
  fields.set(key, std::move(value));
}

void setString(Table& fields, const char* key, Value value) {
  setString(fields, key, std::move(value), key);
}

void moveAs(Table& payload, const char* from, Table& fields, const char* to) {
  std::optional<Value> value = payload.take(from);
  if (value) fields.set(to, std::move(*value));
}

void moveTime(Table& payload, Table& fields, const char* key) {
  std::optional<Value> value = payload.take(key);
  if (!value) return;
  if (isString(value->raw())) {
    const std::optional<double> seconds = secondsOf(textOf(value->raw()));
    if (seconds) value = Value::ofReal(*seconds);
  }
  fields.set(key, std::move(*value));
}

void moveRest(Table& payload, Table& fields) {
  for (Entry& entry : payload.takeAll()) fields.set(std::move(entry.key), std::move(entry.value));
}

} // namespace plain_build
