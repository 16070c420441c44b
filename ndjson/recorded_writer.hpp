// Writes messages without a loss, into memory of a fixed size. The JSON is that of json_writer.hpp
// wherever it reads back as an equal value. Anything else is an object with the only member "$":
//
//   value                                          {"$":[…]}
//   decimal                                        "decimal", its 8 bytes as 16 hex digits
//   buffer                                         "buffer", its bytes in base64
//   boolean of other bits than 0 and 1             "boolean", its byte as an integer
//   custom object                                  "custom": reads back as empty
//   borrowed string                                "borrowed", the string
//   null string, owned or borrowed                 "string" or "borrowed", null
//   bytes that are not UTF-8, owned or borrowed    "bytes" or "borrowed-bytes", in base64
//   double that is not finite                      "double", its bits as 16 hex digits
//   tag of a newer host                            "tag", the tag, the 8 bytes as 16 hex digits
//   map with a key "$", or one that is no string,
//   borrowed, null or not UTF-8                    "map", list of pairs [key, value]
//
// So no map is mistaken for this notation. Only lines that begin with a member "recorded" are read
// this way (json_reader.hpp). docs/recording.md has the table with examples.
//
// The stack depth does not depend on the nesting.
#ifndef VLT_NDJSON_RECORDED_WRITER_HPP
#define VLT_NDJSON_RECORDED_WRITER_HPP

#include <cstddef>
#include <span>
#include <vector>

#include "ndjson/field_set.hpp"
#include "ndjson/json_memory.hpp"
#include "value/map_slot.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity {

// Reads values directly: calls no function of the host. One thread at a time.
class RecordedWriter {
 public:
  // Lists and maps within each other that a recorder writes, counted from the payload or the
  // metadata, as in JsonReader.
  static constexpr std::size_t MAX_DEPTH = 1024;
  // Written in place of a string that is in `omitted`; borrowed strings stay borrowed, null
  // strings null.
  static constexpr const char* PLACEHOLDER = "omitted";

  // Allocates the stack of open containers; throws std::bad_alloc.
  explicit RecordedWriter(FieldSet omitted = {}, std::size_t max_depth = MAX_DEPTH);

  // Writes "metadata":{…},"payload":… (the members, without braces around them) at `begin`. Returns
  // their end. Null when they do not fit between `begin` and `end - JsonMemory::SLACK`, or are
  // nested deeper than the bound; the bytes up to `end` may then be anything.
  [[nodiscard]] char* write(const Message& message, char* begin, const char* end) noexcept;
  // Whether the last message was nested deeper than the bound, as far as it fitted.
  [[nodiscard]] bool isTooDeep() const noexcept { return is_too_deep_; }

 private:
  using place_t = FieldSet::place_t;

  // An open container, and its next part.
  struct open_t {
    enum { ELEMENT, MEMBER, KEY, VALUE } next; // the last two: of a map as a list of pairs
    place_t place;
    union {
      const data_t* element;
      const map_slot_t* slot;
    };
    union {
      const data_t* element_end;
      const map_slot_t* slot_end;
    };
  };

  void finish() noexcept;
  void proceed(open_t& top) noexcept;
  void writeElement(open_t& top) noexcept;
  void writeMember(open_t& top) noexcept;
  void writeKey(open_t& top) noexcept;
  void writeValue(open_t& top) noexcept;
  void write(const data_t& value, place_t place) noexcept;
  void write(std::span<const data_t> elements, place_t place) noexcept;
  void write(std::span<const map_slot_t> slots, place_t place) noexcept;
  void writeText(const vlt_underlying_data_t& value, place_t place) noexcept;
  void writeBoolean(unsigned char content) noexcept;
  void writeDouble(double content) noexcept;
  open_t* open() noexcept;

  FieldSet omitted_;
  JsonMemory out_;
  std::vector<open_t> open_; // as many as may be open
  std::size_t depth_ = 0;    // of open_ in use
  bool is_too_deep_ = false;
};

} // namespace com::velanto::connectivity

#endif
