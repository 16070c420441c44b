// Boost.JSON: objects are arrays of members with an index. Keys are copied into the object that
// they enter; everything else moves within one memory resource.
//
// This file is a library of its own that exports only the two factories. It is built with a newer
// Boost than the codec, and the two must not share inline functions.
#include <boost/json.hpp>
#include <boost/json/src.hpp>
#include <nlohmann/json.hpp>

#include "bench/peers/peer_contender.hpp"
#include "bench/peers/peers.hpp"

namespace com::velanto::connectivity::bench::peers {

namespace {

namespace json = boost::json;

std::string_view viewOf(json::string_view text) { return {text.data(), text.size()}; }
json::string_view viewOf(std::string_view text) { return {text.data(), text.size()}; }

struct BoostTree {
  using value_t = json::value;

  json::storage_ptr storage; // a plain pointer, without a reference count

  static const value_t* find(const value_t& object, std::string_view key) {
    return object.get_object().if_contains(viewOf(key));
  }
  static std::optional<value_t> take(value_t& object, std::string_view key) {
    json::object& members = object.get_object();
    auto* const found = members.find(viewOf(key));
    if (found == members.end()) return std::nullopt;
    std::optional<value_t> value(std::move(found->value()));
    members.erase(found);
    return value;
  }
  static bool isObject(const value_t& value) { return value.is_object(); }
  static bool isText(const value_t& value) { return value.is_string(); }
  static bool isInteger(const value_t& value) { return value.is_int64(); }
  static bool isNumber(const value_t& value) { return value.is_number(); }
  static std::string_view text(const value_t& value) {
    const json::string& content = value.get_string();
    return {content.c_str(), content.size()};
  }
  static const char* kindName(const value_t& value) {
    switch (value.kind()) {
      case json::kind::object:
        return "map";
      case json::kind::array:
        return "list";
      case json::kind::string:
        return "string";
      case json::kind::bool_:
        return "boolean";
      case json::kind::double_:
        return "double";
      case json::kind::null:
        return nullptr;
      default:
        return "integer";
    }
  }
  value_t object(std::size_t capacity) const {
    value_t result(json::object_kind, storage);
    if (capacity != 0) result.get_object().reserve(capacity);
    return result;
  }
  // In braces these two would make arrays.
  value_t number(double value) const {
    value_t result(value, storage);
    return result;
  }
  value_t copyOf(std::string_view text) const {
    value_t result(viewOf(text), storage);
    return result;
  }
  static void add(value_t& object, const char* key, value_t&& value) {
    object.get_object().emplace(key, std::move(value));
  }
  static void put(value_t& object, std::string_view key, value_t&& value) {
    object.get_object().insert_or_assign(viewOf(key), std::move(value));
  }
  static std::size_t size(const value_t& object) { return object.get_object().size(); }

  using entry_t = json::key_value_pair;
  template <class Visit>
  static void drain(value_t& object, const Visit& visit) {
    for (entry_t& entry : object.get_object()) visit(entry);
  }
  static value_t& valueOf(entry_t& entry) { return entry.value(); }
  static void putEntry(value_t& object, entry_t& entry) {
    put(object, viewOf(entry.key()), std::move(entry.value()));
  }
  static void insertEntry(value_t& object, entry_t& entry, value_t&& value) {
    object.get_object().emplace(entry.key(), std::move(value));
  }
  template <class Test>
  static bool every(const value_t& object, const Test& test) {
    for (const entry_t& entry : object.get_object()) {
      if (!test(entry.value())) return false;
    }
    return true;
  }
};

// The library's own parser can miss the nearest double by a bit, which would show as a difference.
json::value fromNlohmann(const nlohmann::json& value) {
  switch (value.type()) {
    case nlohmann::json::value_t::object: {
      json::object object;
      for (const auto& [key, member] : value.items()) object[key] = fromNlohmann(member);
      return object;
    }
    case nlohmann::json::value_t::array: {
      json::array array;
      for (const auto& element : value) array.push_back(fromNlohmann(element));
      return array;
    }
    case nlohmann::json::value_t::string:
      return json::string(value.get_ref<const std::string&>());
    case nlohmann::json::value_t::boolean:
      return value.get<bool>();
    case nlohmann::json::value_t::number_float:
      return value.get<double>();
    case nlohmann::json::value_t::null:
      return nullptr;
    default:
      return value.get<std::int64_t>();
  }
}

struct prototype_t {
  json::value payload;
  json::value metadata;
};

// One message; the values' storage outlives them.
template <class Resource>
struct message_t {
  std::unique_ptr<Resource> resource; // null: the heap
  json::value payload;
  json::value metadata;
};

struct BoostStorage {
  using tree_t = BoostTree;
  using prototype_t = peers::prototype_t;

  static prototype_t parse(const std::string& line) {
    const nlohmann::json message = nlohmann::json::parse(line);
    return {fromNlohmann(message.at("payload")), fromNlohmann(message.at("metadata"))};
  }
  template <class Resource>
  static message_t<Resource> copyInto(std::unique_ptr<Resource> resource,
                                      const prototype_t& prototype) {
    const json::storage_ptr storage =
        resource == nullptr ? json::storage_ptr() : json::storage_ptr(resource.get());
    return {std::move(resource), json::value(prototype.payload, storage),
            json::value(prototype.metadata, storage)};
  }
  template <class Resource>
  static tree_t tree(message_t<Resource>& message) {
    return {message.payload.storage()};
  }
  static std::string write(const json::value& value) { return json::serialize(value); }
};

struct HeapStorage : BoostStorage {
  using message_t = peers::message_t<json::memory_resource>;
  static message_t copy(const prototype_t& prototype) {
    return copyInto(std::unique_ptr<json::memory_resource>(), prototype);
  }
};

struct MonotonicStorage : BoostStorage {
  // Room for most messages and their events in the resource's first block.
  static constexpr std::size_t FIRST_BLOCK = 4096;

  using message_t = peers::message_t<json::monotonic_resource>;
  static message_t copy(const prototype_t& prototype) {
    return copyInto(std::make_unique<json::monotonic_resource>(FIRST_BLOCK), prototype);
  }
};

} // namespace

std::unique_ptr<Contender> makeBoostJson(const lines_t& lines, std::size_t batch) {
  return std::make_unique<PeerContender<HeapStorage>>(lines, batch);
}

std::unique_ptr<Contender> makeBoostJsonMonotonic(const lines_t& lines, std::size_t batch) {
  return std::make_unique<PeerContender<MonotonicStorage>>(lines, batch);
}

} // namespace com::velanto::connectivity::bench::peers
