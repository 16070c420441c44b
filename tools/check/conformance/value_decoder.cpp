#include "tools/check/conformance/value_decoder.hpp"

#include <limits>
#include <new>
#include <vector>

#include "ndjson/make_blocks.hpp"
#include "tools/check/values.hpp"
#include "value/get_visitor.hpp"
#include "value/hashes.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

template <class T>
const T& require(const data_t& json, std::uint32_t tag, const std::string& what) {
  if (json.type_tag() != tag) {
    throw BadCase(what + " must be a " + kind_name(tag) + ", not " + shown(json));
  }
  return json.get<T>();
}

map_t emptyTable(std::int64_t capacity) {
  map_t map(vlt_allocate_map(capacity));
  if (map.table() == nullptr) throw std::bad_alloc();
  return map;
}

data_t special(const std::string& name) {
  if (name == "nan") return data_t(std::numeric_limits<double>::quiet_NaN());
  if (name == "inf") return data_t(std::numeric_limits<double>::infinity());
  if (name == "-inf") return data_t(-std::numeric_limits<double>::infinity());
  throw BadCase("$double takes nan, inf or -inf, not " + name);
}

data_t nullOf(std::uint32_t tag, const data_t& argument) {
  if (!requireTruth(argument, "the argument of a null marker")) throw BadCase("only true has one");
  return bare(tag);
}

} // namespace

const data_t* findMember(const map_t& object, const char* name) {
  const map_t::const_iterator entry = object.find(data_t(name));
  return entry == object.end() ? nullptr : &(*entry).second;
}

const char* requireText(const data_t& json, const std::string& what) {
  return require<const char*>(json, VLT_TAG_STRING, what);
}
std::int64_t requireInteger(const data_t& json, const std::string& what) {
  return require<std::int64_t>(json, VLT_TAG_INTEGER, what);
}
bool requireTruth(const data_t& json, const std::string& what) {
  return require<bool>(json, VLT_TAG_BOOLEAN, what);
}
const list_t& requireList(const data_t& json, const std::string& what) {
  return require<list_t>(json, VLT_TAG_LIST, what);
}
const map_t& requireMap(const data_t& json, const std::string& what) {
  return require<map_t>(json, VLT_TAG_MAP, what);
}

data_t ValueDecoder::decode(const data_t& json) {
  if (json.type_tag() == VLT_TAG_MAP) return decodeObject(json.get<map_t>());
  if (json.type_tag() == VLT_TAG_LIST) return decodeList(json.get<list_t>());
  return json;
}

map_t ValueDecoder::decodeMap(const data_t& json, const std::string& what) {
  data_t decoded = decode(json);
  (void)requireMap(decoded, what);
  return std::move(decoded.get<map_t>());
}

data_t ValueDecoder::decodeObject(const map_t& object) {
  for (const auto& [key, value] : object) {
    const char* const name = key.get<const char*>();
    if (*name != '$') continue;
    if (object.size() != 1) throw BadCase(std::string("a marker stands alone: ") + name);
    return decodeMarker(name, value);
  }
  map_t map = emptyTable(8);
  for (const auto& [key, value] : object) map.insert(data_t(key), decode(value));
  return map;
}

data_t ValueDecoder::decodeMarker(const std::string& marker, const data_t& argument) {
  if (marker == "$borrowed") {
    return borrowed(texts_.emplace_back(requireText(argument, marker)).c_str());
  }
  if (marker == "$null_text") {
    const std::int64_t tag = requireInteger(argument, marker);
    if (tag != VLT_TAG_STRING && tag != VLT_TAG_BORROWED_STRING) {
      throw BadCase("$null_text takes the tag of a string, 5 or 10");
    }
    return bare(static_cast<std::uint32_t>(tag));
  }
  if (marker == "$double") return special(requireText(argument, marker));
  if (marker == "$decimal") {
    return decimal(static_cast<std::uint64_t>(requireInteger(argument, marker)));
  }
  if (marker == "$buffer") return buffer(requireText(argument, marker));
  if (marker == "$custom") {
    return custom(static_cast<std::uint64_t>(requireInteger(argument, marker)));
  }
  if (marker == "$tag") {
    const std::int64_t tag = requireInteger(argument, marker);
    if (tag <= VLT_TAG_BORROWED_STRING) throw BadCase("$tag takes a tag above the known ones");
    return bare(static_cast<std::uint32_t>(tag));
  }
  if (marker == "$null_list") return nullOf(VLT_TAG_LIST, argument);
  if (marker == "$null_map") return nullOf(VLT_TAG_MAP, argument);
  if (marker == "$null_buffer") return nullOf(VLT_TAG_BUFFER, argument);
  if (marker == "$map") return insertedMap(requireList(argument, marker));
  if (marker == "$ordered") return orderedMap(requireList(argument, marker));
  throw BadCase("unknown marker " + marker);
}

data_t ValueDecoder::decodeList(const list_t& list) {
  std::vector<data_t> elements;
  for (const data_t& element : list) elements.push_back(decode(element));
  return makeList(std::move(elements));
}

map_t ValueDecoder::insertedMap(const list_t& pairs) {
  map_t map = emptyTable(8);
  for (const data_t& entry : pairs) {
    const list_t& pair = requireList(entry, "an entry");
    if (pair.size() != 2) throw BadCase("an entry is a key and a value");
    if (!map.insert(decode(pair[0]), decode(pair[1])).second) {
      throw BadCase("repeated key " + shown(pair[0]));
    }
  }
  return map;
}

// A lookup may start anywhere and finds every entry, since no free slot ends it.
map_t ValueDecoder::orderedMap(const list_t& pairs) {
  (void)insertedMap(pairs); // for its checks
  const auto count = static_cast<std::int64_t>(pairs.size());
  vlt_underlying_map_table_t* const table = vlt_allocate_map(count);
  map_t map(table);
  if (table == nullptr) throw std::bad_alloc();
  auto* slot = reinterpret_cast<map_slot_t*>(table + 1);
  for (const data_t& entry : pairs) {
    const auto& pair = entry.get<list_t>();
    data_t value = decode(pair[1]);
    slot->key = decode(pair[0]);
    slot->value = std::move(value);
    slot->hash = hashes::key_hash(slot->key);
    ++slot;
  }
  table->live = count;
  return map;
}

} // namespace com::velanto::connectivity::tools::check
