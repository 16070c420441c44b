// Turns the JSON of a case into values of every kind that a host can hand over, beyond those of
// JSON. An object whose only member is a marker is one value:
//
//   {"$borrowed": "text"}                     string of tag 10
//   {"$null_text": 5 | 10}                    null string of that tag
//   {"$double": "nan" | "inf" | "-inf"}       double
//   {"$decimal": 7}  {"$buffer": "bytes"}     decimal of these bits, buffer of these bytes
//   {"$custom": 7}   {"$tag": 11}             custom object of this label, value of an unknown kind
//   {"$null_list": true}                      list, map, buffer without a block
//   {"$null_map": true}  {"$null_buffer": true}
//   {"$map": [[key, value], …]}               map with keys of any kind
//   {"$ordered": [[key, value], …]}           the same in slots of this order, none left free
//
// Every other object is a map with a table, {} included, so that "no table" differs from "no
// entries".
#ifndef VLT_TOOLS_CHECK_CONFORMANCE_VALUE_DECODER_HPP
#define VLT_TOOLS_CHECK_CONFORMANCE_VALUE_DECODER_HPP

#include <deque>
#include <stdexcept>
#include <string>

#include "value/data_t.hpp"

namespace com::velanto::connectivity::tools::check {

// A case in the wrong format; what() is the reason.
class BadCase : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The member of `object` under `name`, or null.
[[nodiscard]] const data_t* findMember(const map_t& object, const char* name);

// Typed reads of parsed JSON. Throw BadCase with `what`.
[[nodiscard]] const char* requireText(const data_t& json, const std::string& what);
[[nodiscard]] std::int64_t requireInteger(const data_t& json, const std::string& what);
[[nodiscard]] bool requireTruth(const data_t& json, const std::string& what);
[[nodiscard]] const list_t& requireList(const data_t& json, const std::string& what);
[[nodiscard]] const map_t& requireMap(const data_t& json, const std::string& what);

// Owns the bytes of borrowed strings, which are valid as long as the decoder lives.
class ValueDecoder {
 public:
  // Throws BadCase for an unknown or misused marker.
  [[nodiscard]] data_t decode(const data_t& json);
  // The same for an object that is a map, a marker included.
  [[nodiscard]] map_t decodeMap(const data_t& json, const std::string& what);

 private:
  data_t decodeObject(const map_t& object);
  data_t decodeMarker(const std::string& marker, const data_t& argument);
  data_t decodeList(const list_t& list);
  map_t insertedMap(const list_t& pairs);
  map_t orderedMap(const list_t& pairs);

  std::deque<std::string> texts_;
};

} // namespace com::velanto::connectivity::tools::check

#endif
