// Reads messages from JSON, one message a line:
//
//   {"metadata": {"pulsarPath": "t1/sub/events/7"}, "payload": {"id": "1", "count": 2}}
//
//   JSON                  value
//   null                  empty
//   true, false           boolean
//   5, -0 (becomes 0)     integer, if without fraction and exponent; refuses one beyond 64 bits,
//                         since no value could hold it
//   5.0, 1e2 …            double: every other number; refuses one beyond the doubles' range
//   "text"                string; refuses an embedded NUL, since the host's strings end at NUL
//   [ ]                   list, of any mixture
//   { }                   map; "" is a key like any other; refuses a repeated key, since one of the
//                         values would be lost
//
// A byte order mark before the JSON means nothing.
//
// A line is an object with "metadata" (an object) and "payload" (any value). Without the one there
// are no entries, without the other the payload is empty. A member "dropped" is a remark of a tool:
// it must be well-formed and means nothing. There are no other members.
//
// A line whose first member is "recorded" comes from a recorder (recorded.hpp). In such a line, and
// nowhere else, an object whose first member is "$" means a value that JSON has no form for
// (recorded_writer.hpp). Borrowed strings are then kept as long as the process lives.
//
// The parser underneath checks only the values that its caller asks for. The reader asks for every
// value, so nothing malformed passes: it accepts a line whole or not at all.
#ifndef VLT_NDJSON_JSON_READER_HPP
#define VLT_NDJSON_JSON_READER_HPP

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "value/message.hpp"

namespace com::velanto::connectivity {

// A malformed line; what() is the reason, one line without a full stop.
class MalformedJson : public std::runtime_error {
 public:
  explicit MalformedJson(const std::string& reason) : std::runtime_error(reason) {}
  MalformedJson(const std::string& reason, std::size_t column)
      : std::runtime_error(reason), column_(column) {}

  // The place of the fault, in bytes from 1. Exact for a fault of a single string, number, key or
  // byte, and for brackets; at or shortly after the fault for other ones of the structure. 0: not
  // known.
  [[nodiscard]] std::size_t column() const noexcept { return column_; }

 private:
  std::size_t column_ = 0;
};

// A part of a line, in bytes.
struct text_part_t {
  std::size_t begin = 0;
  std::size_t size = 0;
};

// Keeps its buffers from line to line, in the size of the longest line so far. One thread at a
// time.
class JsonReader {
 public:
  // Lists and objects within each other, counted from the payload or the metadata. A deeper line is
  // malformed. Reading takes no stack for them.
  static constexpr int MAX_DEPTH = 200'000;
  // In the payload of a message without "pulsarPath": the event of such a notification puts the
  // further members of a series into "params".
  static constexpr int MAX_EVENT_DEPTH = MAX_DEPTH + 1;
  // In parseValue: the tools' own lines have such events within other values.
  static constexpr int MAX_VALUE_DEPTH = MAX_EVENT_DEPTH + 3;

  JsonReader();
  JsonReader(const JsonReader&) = delete;
  JsonReader& operator=(const JsonReader&) = delete;
  ~JsonReader();

  // The message of `line`, white space around it allowed. Throws MalformedJson, std::bad_alloc; the
  // reader stays usable.
  [[nodiscard]] Message parseMessage(std::string_view line);

  // The place of the member "dropped" in the line of the last message, with one comma next to it:
  // without this part the line is still an object. Of size 0 when there is none.
  [[nodiscard]] text_part_t remark() const noexcept;

  // As parseMessage, for one JSON value of any kind.
  [[nodiscard]] data_t parseValue(std::string_view json);

 private:
  class Parser; // keeps the parsing library out of the sources that only use the reader
  std::unique_ptr<Parser> parser_;
};

} // namespace com::velanto::connectivity

#endif
