// Writes messages and values as JSON, in the shape that JsonReader reads:
//
//   value                              JSON
//   empty                              null
//   boolean                            true, false
//   integer                            digits
//   double                             the shortest form that reads back as the same double, never
//                                      as an integer: 5.0, 1e+22; not finite: "nan", "inf", "-inf"
//   string, also borrowed              the string; a null string as ""
//   list, map                          [ ], { }, a map's entries in the order of its slots
//   decimal, buffer, custom, unknown   the host's display text, as a string
//
// The host's display text names a key that is no string, so two keys of a map can have the same
// name. Strings must be UTF-8; their bytes are not checked.
#ifndef VLT_NDJSON_JSON_WRITER_HPP
#define VLT_NDJSON_JSON_WRITER_HPP

#include <string>

#include "value/message.hpp"

namespace com::velanto::connectivity {

// Append to `out` without a line end and without line breaks. The stack depth does not depend on
// the nesting of the value. Throw std::bad_alloc, and std::logic_error when the host yields no
// display text; `out` may then end in the middle.
void writeJson(std::string& out, const data_t& value);
// {"metadata":{…},"payload":…}; an empty payload is left out, as a line without one reads.
void writeJson(std::string& out, const Message& message);

// The same as strings of their own.
[[nodiscard]] std::string toJson(const data_t& value);
[[nodiscard]] std::string toJson(const Message& message);

} // namespace com::velanto::connectivity

#endif
