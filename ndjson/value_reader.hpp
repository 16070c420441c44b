// Reads the values of a line without recursion, however deep they nest: containers that are open
// wait on a stack of their own.
//
//   container    parts                     becomes
//   list         values                    a list
//   map          names with values         a map
//
// and, in recorded lines (recorded_writer.hpp), of {"$":["map",[[key,value],…]]}:
//
//   notation     the only member "$"       the value that its parts mean (notation.hpp)
//   parts        values, lists of pairs    parts of the notation
//   pairs        pairs                     parts of the notation, after an empty list
//   pair         a key and a value         two of them
//
// Values wait on a second stack until their container closes; those of a map go into it at once.
#ifndef VLT_NDJSON_VALUE_READER_HPP
#define VLT_NDJSON_VALUE_READER_HPP

#include <simdjson.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "value/data_t.hpp"

namespace com::velanto::connectivity {

namespace ondemand = simdjson::ondemand;

// One line at a time.
class ValueReader {
 public:
  ValueReader();

  // The line to read from now on, with JSON around it that no column counts. Throws MalformedJson,
  // std::bad_alloc, as all below.
  ondemand::document open(std::string_view before, std::string_view json, std::string_view after);
  // The current line comes from a recorder, so that it has the notation.
  void expectNotation() noexcept { is_recorded_ = true; }

  // A value of the line that `open` has returned, whole. Refuses more than `max_depth` levels,
  // which is JsonReader::MAX_DEPTH or more.
  [[nodiscard]] data_t read(ondemand::value value, int max_depth);
  // Of the last value: the first level beyond JsonReader::MAX_DEPTH in text(). Null: there is none.
  [[nodiscard]] const char* deepPlace() const noexcept { return deep_place_; }

  // In memory of the reader, with a NUL at its end, until the next call.
  [[nodiscard]] std::string_view unescaped(ondemand::raw_json_string text);

  // The line, with the JSON around it and with bytes after it that the parser may read.
  [[nodiscard]] std::string_view text() const noexcept { return padded_; }
  // Whether there is JSON before the line.
  [[nodiscard]] bool isEnclosed() const noexcept { return before_ > 0; }
  // The column of a place in text(), from 1.
  [[nodiscard]] std::size_t columnOf(const char* place) const noexcept;
  // `place` is that of the name.
  [[noreturn]] void refuseRepeated(std::string_view name, const char* place) const;
  // `place` is that of the first level beyond `max_depth`.
  [[noreturn]] void refuseDepth(int max_depth, const char* place) const;

 private:
  enum class Kind { LIST, MAP, NOTATION, PARTS, PAIRS, PAIR };

  // An open container.
  struct open_t {
    open_t(Kind of_kind, ondemand::array_iterator first, std::size_t values) noexcept
        : kind(of_kind), begin(values), element(first) {}
    open_t(Kind of_kind, ondemand::object_iterator first, std::size_t values,
           const char* at) noexcept
        : kind(of_kind), begin(values), place(at), member(first) {}

    Kind kind;
    bool is_begun = false;       // of a notation: past its first member
    std::size_t begin;           // number of its first value in values_
    const char* place = nullptr; // of the notation, or of the member that is a container
    map_t map{};
    data_t key{}; // of that member
    union {
      ondemand::array_iterator element; // the current one
      ondemand::object_iterator member;
    };
  };

  data_t readContainers();
  // Of one caller each, which runs for every container: calls would cost as much as the work.
  [[gnu::always_inline]] inline bool isComplete(open_t& top);
  bool readElements(open_t& top);
  [[gnu::always_inline]] inline bool readMembers(open_t& top);
  bool readNotation(open_t& top);
  [[gnu::always_inline]] inline data_t close(open_t& top);
  [[gnu::always_inline]] inline void add(open_t& top, data_t&& value);
  void insert(map_t& map, data_t&& key, data_t&& value, const char* place) const;
  [[nodiscard]] std::vector<data_t> valuesFrom(std::size_t begin);

  static Kind kindWithin(Kind around) noexcept;
  void begin(ondemand::value& value, ondemand::json_type type, Kind list = Kind::LIST);
  void beginArray(ondemand::value& value, Kind kind);
  void beginObject(ondemand::value& value);
  void descend(ondemand::value& value);
  void noteDepth(const char* place);
  [[nodiscard]] bool isNotation(ondemand::value& value) const;
  data_t readScalar(ondemand::value& value, ondemand::json_type type);
  static data_t readNull(ondemand::value& value);
  static data_t readTruth(ondemand::value& value);
  [[nodiscard]] data_t readNumber(ondemand::value& value) const;
  data_t readText(ondemand::raw_json_string text);

  ondemand::parser parser_;
  std::size_t before_ = 0;    // bytes in front of the line
  std::string padded_;        // the current line, with the bytes after it that the parser may read
  bool is_recorded_ = false;  // the current line is, so that it has the notation
  bool may_have_nul_ = false; // a string of the current line may
  std::string text_; // as long as the longest line so far, and so room for any string of it
  std::vector<open_t> open_;
  std::vector<data_t> values_;
  int depth_ = 0; // levels that are open
  int max_depth_ = 0;
  const char* deep_place_ = nullptr;
};

} // namespace com::velanto::connectivity

#endif
