// nlohmann::json: objects are std::map, so entries change objects as whole nodes, without touching
// the heap.
#include <nlohmann/json.hpp>

#include "bench/peers/peer_contender.hpp"
#include "bench/peers/peers.hpp"

namespace com::velanto::connectivity::bench::peers {

namespace {

using Json = nlohmann::json;
using object_t = Json::object_t;

object_t& objectOf(Json& value) { return value.get_ref<object_t&>(); }
const object_t& objectOf(const Json& value) { return value.get_ref<const object_t&>(); }

struct NlohmannTree {
  using value_t = Json;

  static const Json* find(const Json& object, std::string_view key) {
    const auto found = objectOf(object).find(key);
    return found == objectOf(object).end() ? nullptr : &found->second;
  }
  static std::optional<Json> take(Json& object, std::string_view key) {
    const auto found = objectOf(object).find(key);
    if (found == objectOf(object).end()) return std::nullopt;
    std::optional<Json> value(std::move(found->second));
    objectOf(object).erase(found);
    return value;
  }
  static bool isObject(const Json& value) { return value.is_object(); }
  static bool isText(const Json& value) { return value.is_string(); }
  static bool isInteger(const Json& value) { return value.is_number_integer(); }
  static bool isNumber(const Json& value) { return value.is_number(); }
  static std::string_view text(const Json& value) { return value.get_ref<const std::string&>(); }
  static const char* kindName(const Json& value) {
    switch (value.type()) {
      case Json::value_t::object:
        return "map";
      case Json::value_t::array:
        return "list";
      case Json::value_t::string:
        return "string";
      case Json::value_t::boolean:
        return "boolean";
      case Json::value_t::number_float:
        return "double";
      case Json::value_t::null:
        return nullptr;
      default:
        return "integer";
    }
  }
  static Json object(std::size_t) { return Json::object(); }
  static Json number(double value) { return value; }
  static Json copyOf(std::string_view text) { return text; }
  static void add(Json& object, const char* key, Json&& value) {
    objectOf(object).emplace(key, std::move(value));
  }
  static void put(Json& object, const char* key, Json&& value) {
    objectOf(object).insert_or_assign(key, std::move(value));
  }
  static std::size_t size(const Json& object) { return objectOf(object).size(); }

  using entry_t = object_t::node_type;
  template <class Visit>
  static void drain(Json& object, const Visit& visit) {
    object_t& entries = objectOf(object);
    while (!entries.empty()) visit(entries.extract(entries.begin()));
  }
  static Json& valueOf(entry_t& entry) { return entry.mapped(); }
  static void putEntry(Json& object, entry_t&& entry) {
    auto inserted = objectOf(object).insert(std::move(entry));
    if (!inserted.inserted) inserted.position->second = std::move(inserted.node.mapped());
  }
  static void insertEntry(Json& object, entry_t&& entry, Json&& value) {
    entry.mapped() = std::move(value);
    objectOf(object).insert(std::move(entry));
  }
  template <class Test>
  static bool every(const Json& object, const Test& test) {
    for (const auto& [key, value] : objectOf(object)) {
      if (!test(value)) return false;
    }
    return true;
  }
};

struct NlohmannStorage {
  using tree_t = NlohmannTree;
  struct message_t {
    Json payload;
    Json metadata;
  };
  using prototype_t = message_t;

  static prototype_t parse(const std::string& line) {
    Json message = Json::parse(line);
    return {std::move(message["payload"]), std::move(message["metadata"])};
  }
  static message_t copy(const prototype_t& prototype) { return prototype; }
  static tree_t tree(message_t&) { return {}; }
  static std::string write(const Json& value) { return value.dump(); }
};

} // namespace

std::unique_ptr<Contender> makeNlohmann(const lines_t& lines, std::size_t batch) {
  return std::make_unique<PeerContender<NlohmannStorage>>(lines, batch);
}

} // namespace com::velanto::connectivity::bench::peers
