#include "ndjson/value_reader.hpp"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

#include "ndjson/json_reader.hpp"
#include "ndjson/json_text.hpp"
#include "ndjson/make_blocks.hpp"
#include "ndjson/notation.hpp"
#include "ndjson/parser_faults.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity {

namespace {

constexpr std::size_t FIRST_CAPACITY = 4096; // bytes; grows with the strings

// The reader's own count of levels decides. Only its checks in builds without optimisation make the
// library count, too: the levels around the value, and {"$":["map",[[key,value]]]}, four for one.
#if SIMDJSON_DEVELOPMENT_CHECKS
constexpr std::size_t LIBRARY_DEPTH = 4 * JsonReader::MAX_VALUE_DEPTH + 64;
#else
constexpr std::size_t LIBRARY_DEPTH = simdjson::DEFAULT_MAX_DEPTH;
#endif

bool isContainer(ondemand::json_type type) noexcept {
  return type == ondemand::json_type::array || type == ondemand::json_type::object;
}

// What a list that is none of pairs becomes among the parts of a notation: no kind has it.
data_t noPairs() { return data_t(false); }

} // namespace

ValueReader::ValueReader() { check(parser_.allocate(FIRST_CAPACITY, LIBRARY_DEPTH)); }

ondemand::document ValueReader::open(std::string_view before, std::string_view json,
                                     std::string_view after) {
  is_recorded_ = false;
  padded_.assign(before).append(json).append(after);
  // Blanks take the place of a byte order mark, so that all columns stay.
  if (json.starts_with("\xEF\xBB\xBF")) padded_.replace(before.size(), 3, 3, ' ');
  const std::size_t length = padded_.size();
  padded_.append(simdjson::SIMDJSON_PADDING, ' ');
  if (text_.size() < padded_.size()) text_.resize(padded_.size());
  may_have_nul_ = json.find("\\u0000") != std::string_view::npos; // no other escape is one
  before_ = before.size();
  ondemand::document document;
  const simdjson::error_code error =
      parser_.iterate(simdjson::padded_string_view(padded_.data(), length, padded_.size()))
          .get(document);
  if (error != simdjson::SUCCESS) {
    refuseWhole(error, std::string_view(padded_).substr(before.size(), json.size()));
  }
  return document;
}

std::size_t ValueReader::columnOf(const char* place) const noexcept {
  const auto offset = static_cast<std::size_t>(place - padded_.data());
  return std::min(offset, padded_.size()) - std::min(offset, before_) + 1;
}

void ValueReader::refuseRepeated(std::string_view name, const char* place) const {
  std::string quoted;
  appendJsonText(quoted, name);
  throw MalformedJson("repeated key " + quoted, columnOf(place));
}

data_t ValueReader::read(ondemand::value value, int max_depth) {
  deep_place_ = nullptr;
  const ondemand::json_type type = require(value.type());
  if (!isContainer(type)) return readScalar(value, type);
  depth_ = 0;
  max_depth_ = max_depth;
  try {
    begin(value, type);
    return readContainers();
  } catch (...) {
    open_.clear();
    values_.clear();
    throw;
  }
}

// The outermost of the open containers.
data_t ValueReader::readContainers() {
  while (true) {
    open_t& top = open_.back();
    if (!isComplete(top)) continue; // another one is open within it
    data_t value = close(top);
    const bool is_value = top.kind <= Kind::NOTATION;
    open_.pop_back();
    if (open_.empty()) return value;
    open_t& around = open_.back();
    if (is_value) add(around, std::move(value));
    around.kind == Kind::MAP || around.kind == Kind::NOTATION ? void(++around.member)
                                                              : void(++around.element);
  }
}

// What a list within a container is.
ValueReader::Kind ValueReader::kindWithin(Kind around) noexcept {
  if (around == Kind::PARTS) return Kind::PAIRS;
  return around == Kind::PAIRS ? Kind::PAIR : Kind::LIST;
}

// Reads on. False: up to a container within `top`, which is open now, and `top` is no more valid.
bool ValueReader::isComplete(open_t& top) {
  if (top.kind == Kind::MAP) return readMembers(top);
  return top.kind == Kind::NOTATION ? readNotation(top) : readElements(top);
}

bool ValueReader::readElements(open_t& top) {
  for (; top.element != ondemand::array_iterator(); ++top.element) {
    ondemand::value value = require(*top.element);
    const ondemand::json_type type = require(value.type());
    if (isContainer(type)) {
      begin(value, type, kindWithin(top.kind));
      return false;
    }
    add(top, readScalar(value, type));
  }
  return true;
}

bool ValueReader::readMembers(open_t& top) {
  ondemand::object_iterator member = top.member; // in registers
  for (; member != ondemand::object_iterator(); ++member) {
    ondemand::field field = require(*member);
    const char* const place = field.key().raw() - 1;
    data_t key = readText(field.key());
    const ondemand::json_type type = require(field.value().type());
    if (isContainer(type)) {
      top.member = member;
      top.key = std::move(key);
      top.place = place;
      begin(field.value(), type);
      return false;
    }
    insert(top.map, std::move(key), readScalar(field.value(), type), place);
  }
  return true;
}

// Of another member than an array under "$", the notation tells the reason.
bool ValueReader::readNotation(open_t& top) {
  if (!(top.member != ondemand::object_iterator())) return true;
  ondemand::field field = require(*top.member);
  if (std::exchange(top.is_begun, true)) {
    throw MalformedJson(R"(member next to "$")", columnOf(field.key().raw() - 1));
  }
  if (require(field.value().type()) != ondemand::json_type::array) return true;
  beginArray(field.value(), Kind::PARTS);
  return false;
}

// The value of a container that is complete; an empty one for a part of a notation.
data_t ValueReader::close(open_t& top) {
  switch (top.kind) {
    case Kind::LIST:
      --depth_;
      return makeList(valuesFrom(top.begin));
    case Kind::MAP:
      --depth_;
      return std::move(top.map);
    case Kind::NOTATION:
      try {
        return valueOfNotation(valuesFrom(top.begin));
      } catch (const MalformedJson& e) {
        throw MalformedJson(e.what(), columnOf(top.place));
      }
    case Kind::PARTS:
      break;
    case Kind::PAIRS:
      --depth_;
      break;
    case Kind::PAIR:
      if (values_.size() - top.begin != 2) values_[(&top - 1)->begin] = noPairs();
  }
  return {};
}

void ValueReader::add(open_t& top, data_t&& value) {
  if (top.kind == Kind::MAP) {
    insert(top.map, std::move(top.key), std::move(value), top.place);
  } else if (top.kind == Kind::PAIRS) {
    values_[top.begin] = noPairs();
  } else {
    values_.push_back(std::move(value));
  }
}

// `place` is that of the key.
void ValueReader::insert(map_t& map, data_t&& key, data_t&& value, const char* place) const {
  if (map.insert(std::move(key), std::move(value)).second) return;
  // A refused insertion leaves its arguments alone.
  // NOLINTNEXTLINE(bugprone-use-after-move)
  refuseRepeated(text_or_empty(key.get<const char*>()), place);
}

// The values of a container, which are the last ones.
std::vector<data_t> ValueReader::valuesFrom(std::size_t begin) {
  const auto first = values_.begin() + static_cast<std::ptrdiff_t>(begin);
  std::vector<data_t> values(std::make_move_iterator(first),
                             std::make_move_iterator(values_.end()));
  values_.erase(first, values_.end());
  return values;
}

data_t ValueReader::readScalar(ondemand::value& value, ondemand::json_type type) {
  switch (type) {
    case ondemand::json_type::null:
      return readNull(value);
    case ondemand::json_type::boolean:
      return readTruth(value);
    case ondemand::json_type::number:
      return readNumber(value);
    default:
      return readText(require(value.get_raw_json_string()));
  }
}

// Opens a container; `list` is the kind of an array.
void ValueReader::begin(ondemand::value& value, ondemand::json_type type, Kind list) {
  type == ondemand::json_type::array ? beginArray(value, list) : beginObject(value);
}

void ValueReader::beginArray(ondemand::value& value, Kind kind) {
  const std::size_t begin = values_.size();
  if (kind == Kind::LIST || kind == Kind::PAIRS) descend(value);
  if (kind == Kind::PAIRS) values_.emplace_back(list_t());
  ondemand::array array = require(value.get_array());
  open_.emplace_back(kind, require(array.begin()), begin);
}

void ValueReader::beginObject(ondemand::value& value) {
  const bool is_notation = is_recorded_ && isNotation(value);
  const char* const place = is_notation ? value.raw_json_token().data() : nullptr;
  if (!is_notation) descend(value);
  ondemand::object object = require(value.get_object());
  open_.emplace_back(is_notation ? Kind::NOTATION : Kind::MAP, require(object.begin()),
                     values_.size(), place);
}

// One level more.
void ValueReader::descend(ondemand::value& value) {
  if (++depth_ > JsonReader::MAX_DEPTH) noteDepth(value.raw_json_token().data());
}

void ValueReader::noteDepth(const char* place) {
  if (depth_ > max_depth_) refuseDepth(max_depth_, place);
  if (deep_place_ == nullptr) deep_place_ = place;
}

void ValueReader::refuseDepth(int max_depth, const char* place) const {
  throw MalformedJson("nested deeper than " + std::to_string(max_depth) + " levels",
                      columnOf(place));
}

// Whether the first member of an object is "$".
bool ValueReader::isNotation(ondemand::value& value) const {
  const std::string_view line(padded_);
  const auto begin = static_cast<std::size_t>(value.raw_json_token().data() - padded_.data());
  const std::size_t member = line.find_first_not_of(" \t\r\n", begin + 1);
  return member != std::string_view::npos && line.substr(member).starts_with(R"("$")");
}

// The kinds told so far by their first letter only: the rest may be anything.
data_t ValueReader::readNull(ondemand::value& value) {
  bool is_null = false;
  const simdjson::error_code error = value.is_null().get(is_null);
  if (error != simdjson::SUCCESS || !is_null) check(simdjson::N_ATOM_ERROR);
  return {};
}

data_t ValueReader::readTruth(ondemand::value& value) {
  bool truth = false;
  if (value.get_bool().get(truth) != simdjson::SUCCESS) check(simdjson::T_ATOM_ERROR);
  return data_t(truth);
}

data_t ValueReader::readNumber(ondemand::value& value) const {
  std::int64_t integer = 0;
  if (value.get_int64().get(integer) == simdjson::SUCCESS) return data_t(integer);
  // A fraction, an exponent, more than 64 bits, or no number at all: the next attempt tells.
  const std::string_view token = value.raw_json_token();
  double real = 0;
  if (value.get_double().get(real) != simdjson::SUCCESS) {
    throw MalformedJson(reasonOf(simdjson::NUMBER_ERROR), columnOf(token.data()));
  }
  const std::size_t end = token.find_first_not_of("-0123456789");
  const bool is_integer = end == std::string_view::npos ||
                          std::string_view(".eE").find(token[end]) == std::string_view::npos;
  if (is_integer) throw MalformedJson("integer beyond 64 bits", columnOf(token.data()));
  return data_t(real);
}

std::string_view ValueReader::unescaped(ondemand::raw_json_string text) {
  auto* const begin = reinterpret_cast<std::uint8_t*>(text_.data());
  std::uint8_t* end = begin;
  const simdjson::error_code error = parser_.unescape(text, end).error();
  if (error != simdjson::SUCCESS) throw MalformedJson(reasonOf(error), columnOf(text.raw() - 1));
  *end = '\0';
  return std::string_view(text_).substr(0, static_cast<std::size_t>(end - begin));
}

data_t ValueReader::readText(ondemand::raw_json_string text) {
  const std::string_view bytes = unescaped(text);
  if (may_have_nul_ && bytes.find('\0') != std::string_view::npos) {
    throw MalformedJson("string with an embedded NUL", columnOf(text.raw() - 1));
  }
  return data_t(text_.c_str());
}

} // namespace com::velanto::connectivity
