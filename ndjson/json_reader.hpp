// Reads messages from JSON text, one message a line:
//
//   {"metadata": {"pulsarPath": "t1/sub/events/7"}, "payload": {"id": "1", "count": 2}}
//
//   JSON                  value
//   null                  empty
//   true, false           boolean
//   5, -0 (becomes 0)     integer, if without fraction and exponent; one beyond 64 bits is refused,
//                         since no value could hold it
//   5.0, 1e2 …            double: every other number; one beyond the doubles' range is refused
//   "text"                string; with an embedded NUL refused, since the host's texts end at NUL
//   [ ]                   list, of any mixture
//   { }                   map; "" is a key like any other, a repeated key is refused, since one of
//                         the values would be lost
//
// A line is an object with "metadata" (an object) and "payload" (any value). Without the one there
// are no entries, without the other the payload is empty. A member "dropped" is a remark of a tool:
// it must be well-formed and means nothing. There are no other members.
//
// The parser underneath checks only what is asked of it. Here every value is asked for, so that
// nothing malformed passes: a text is accepted whole or not at all.
#ifndef VLT_NDJSON_JSON_READER_HPP
#define VLT_NDJSON_JSON_READER_HPP

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "value/message.hpp"

namespace com::velanto::connectivity {

// A text that is not what it has to be; what() is the reason, one line without a full stop.
class MalformedJson : public std::runtime_error {
 public:
  explicit MalformedJson(const std::string& reason) : std::runtime_error(reason) {}
  MalformedJson(const std::string& reason, std::size_t column)
      : std::runtime_error(reason), column_(column) {}

  // Where the reason was found, in bytes from 1: exact for what is wrong with a single text, number,
  // key or byte; at or shortly behind the fault when the structure is wrong. 0: not known.
  [[nodiscard]] std::size_t column() const noexcept { return column_; }

 private:
  std::size_t column_ = 0;
};

// A part of a text, in bytes.
struct text_part_t {
  std::size_t begin = 0;
  std::size_t size = 0;
};

// Keeps its buffers from text to text; they are as large as the longest text so far needed. One
// thread at a time.
class JsonReader {
 public:
  // Lists and objects within each other, counted from the payload, from the metadata or from the
  // value that parseValue reads. A deeper text is malformed.
  static constexpr int MAX_DEPTH = 1024;

  JsonReader();
  JsonReader(const JsonReader&) = delete;
  JsonReader& operator=(const JsonReader&) = delete;
  ~JsonReader();

  // The message that `line` is, white space around it allowed. Throws MalformedJson,
  // std::bad_alloc; the reader can be used on.
  [[nodiscard]] Message parseMessage(std::string_view line);

  // Where the member "dropped" stands in the line of the last message, with one comma beside it:
  // without this part the line is an object still. Of size 0 when there is none.
  [[nodiscard]] text_part_t remark() const noexcept;

  // As parseMessage, for a text that is one JSON value of any kind.
  [[nodiscard]] data_t parseValue(std::string_view json);

 private:
  class Parser; // keeps the parsing library out of the sources that only use the reader
  std::unique_ptr<Parser> parser_;
};

} // namespace com::velanto::connectivity

#endif
