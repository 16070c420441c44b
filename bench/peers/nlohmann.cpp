// nlohmann::json: objects are std::map, so entries change objects as whole nodes, without touching
// the heap.
#include <nlohmann/json.hpp>

#include "bench/peers/peer_contender.hpp"
#include "bench/peers/peers.hpp"

namespace com::velanto::connectivity::bench::peers {

namespace {

using json = nlohmann::json;
using object_t = json::object_t;

object_t& objectOf(json& value) { return value.get_ref<object_t&>(); }
const object_t& objectOf(const json& value) { return value.get_ref<const object_t&>(); }

struct NlohmannTree {
  using value_t = json;

  static const json* find(const json& object, std::string_view key) {
    const auto found = objectOf(object).find(key);
    return found == objectOf(object).end() ? nullptr : &found->second;
  }
  static std::optional<json> take(json& object, std::string_view key) {
    const auto found = objectOf(object).find(key);
    if (found == objectOf(object).end()) return std::nullopt;
    std::optional<json> value(std::move(found->second));
    objectOf(object).erase(found);
    return value;
  }
  static bool isObject(const json& value) { return value.is_object(); }
  static bool isText(const json& value) { return value.is_string(); }
  static bool isInteger(const json& value) { return value.is_number_integer(); }
  static bool isNumber(const json& value) { return value.is_number(); }
  static std::string_view text(const json& value) { return value.get_ref<const std::string&>(); }
  static const char* kindName(const json& value) {
    switch (value.type()) {
      case json::value_t::object:
        return "map";
      case json::value_t::array:
        return "list";
      case json::value_t::string:
        return "string";
      case json::value_t::boolean:
        return "boolean";
      case json::value_t::number_float:
        return "double";
      case json::value_t::null:
        return nullptr;
      default:
        return "integer";
    }
  }
  static json object(std::size_t) { return json::object(); }
  static json number(double value) { return value; }
  static json copyOf(std::string_view text) { return text; }
  static void add(json& object, const char* key, json&& value) {
    objectOf(object).emplace(key, std::move(value));
  }
  static void put(json& object, const char* key, json&& value) {
    objectOf(object).insert_or_assign(key, std::move(value));
  }
  static std::size_t size(const json& object) { return objectOf(object).size(); }

  using entry_t = object_t::node_type;
  template <class Visit>
  static void drain(json& object, const Visit& visit) {
    object_t& entries = objectOf(object);
    while (!entries.empty()) visit(entries.extract(entries.begin()));
  }
  static json& valueOf(entry_t& entry) { return entry.mapped(); }
  static void putEntry(json& object, entry_t&& entry) {
    auto inserted = objectOf(object).insert(std::move(entry));
    if (!inserted.inserted) inserted.position->second = std::move(inserted.node.mapped());
  }
  static void insertEntry(json& object, entry_t&& entry, json&& value) {
    entry.mapped() = std::move(value);
    objectOf(object).insert(std::move(entry));
  }
  template <class Test>
  static bool every(const json& object, const Test& test) {
    for (const auto& [key, value] : objectOf(object)) {
      if (!test(value)) return false;
    }
    return true;
  }
};

struct NlohmannStorage {
  using tree_t = NlohmannTree;
  struct message_t {
    json payload;
    json metadata;
  };
  using prototype_t = message_t;

  static prototype_t parse(const std::string& line) {
    json message = json::parse(line);
    return {std::move(message["payload"]), std::move(message["metadata"])};
  }
  static message_t copy(const prototype_t& prototype) { return prototype; }
  static tree_t tree(message_t&) { return {}; }
  static std::string write(const json& value) { return value.dump(); }
};

} // namespace

std::unique_ptr<Contender> makeNlohmann(const lines_t& lines, std::size_t batch) {
  return std::make_unique<PeerContender<NlohmannStorage>>(lines, batch);
}

} // namespace com::velanto::connectivity::bench::peers
