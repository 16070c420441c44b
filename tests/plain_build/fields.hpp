// Moves of single fields from a notification to an event. A field that is taken is gone from the
// notification, so that the rest of it can follow as it is.
#ifndef VLT_PLAIN_BUILD_FIELDS_HPP
#define VLT_PLAIN_BUILD_FIELDS_HPP

#include <string>

#include "tests/plain_build/table.hpp"

namespace plain_build {

// All functions throw std::bad_alloc, and std::runtime_error with the texts for the log.

// Removes the field `key` of the payload. Throws when it is missing.
Value takeRequired(Table& payload, const char* key);
// Removes the "id" of the map of a source. Throws when `source` is no map or has none.
Value takeSourceId(Value source);
// Removes the "time" of the payload and reads it as seconds. Throws when it is missing or no time.
double takeTime(Table& payload);

// Throws when `value` is not of the kind `tag`; the text names `key`.
void requireFieldKind(const RawValue& value, uint32_t tag, const char* key);

// Sets a field to a value that must be a string; the text for others names `name_in_error`.
void setString(Table& fields, const char* key, Value value, const char* name_in_error);
void setString(Table& fields, const char* key, Value value);
void requireString(const Value& value, const char* name_in_error);

// Moves a field, if there is one: with another name; or as seconds if it is a time.
void moveAs(Table& payload, const char* from, Table& fields, const char* to);
void moveTime(Table& payload, Table& fields, const char* key);
// Moves all fields of the payload; they replace fields of the same name.
void moveRest(Table& payload, Table& fields);

} // namespace plain_build

#endif
