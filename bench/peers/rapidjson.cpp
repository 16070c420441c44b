// RapidJSON: objects are arrays of members; strings and members are in the message's pool.
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "bench/peers/peer_contender.hpp"
#include "bench/peers/peers.hpp"

namespace com::velanto::connectivity::bench::peers {

namespace {

using value_t = rapidjson::Value;
using pool_t = rapidjson::MemoryPoolAllocator<>;

// The pool's own default, 64 KiB, would be a large block per message for nothing.
constexpr std::size_t POOL_CHUNK = 4096;

auto nameOf(std::string_view text) {
  return rapidjson::StringRef(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

struct RapidTree {
  using value_t = rapidjson::Value;

  pool_t* pool;

  static const value_t* find(const value_t& object, std::string_view key) {
    const auto found = object.FindMember(value_t(nameOf(key)));
    return found == object.MemberEnd() ? nullptr : &found->value;
  }
  // RemoveMember moves the last member into the gap; the order of members means nothing here.
  static std::optional<value_t> take(value_t& object, std::string_view key) {
    const auto found = object.FindMember(value_t(nameOf(key)));
    if (found == object.MemberEnd()) return std::nullopt;
    std::optional<value_t> value(std::move(found->value));
    object.RemoveMember(found);
    return value;
  }
  static bool isObject(const value_t& value) { return value.IsObject(); }
  static bool isText(const value_t& value) { return value.IsString(); }
  static bool isInteger(const value_t& value) { return value.IsInt64(); }
  static bool isNumber(const value_t& value) { return value.IsNumber(); }
  static std::string_view text(const value_t& value) {
    return {value.GetString(), value.GetStringLength()};
  }
  static const char* kindName(const value_t& value) {
    switch (value.GetType()) {
      case rapidjson::kObjectType:
        return "map";
      case rapidjson::kArrayType:
        return "list";
      case rapidjson::kStringType:
        return "string";
      case rapidjson::kNumberType:
        return value.IsInt64() ? "integer" : "double";
      case rapidjson::kNullType:
        return nullptr;
      default:
        return "boolean";
    }
  }
  // This version reserves nothing ahead: the first member makes room for 16.
  static value_t object(std::size_t) { return value_t(rapidjson::kObjectType); }
  static value_t number(double value) { return value_t(value); }
  // A constant outlives every message, so a reference to it is enough.
  static value_t copyOf(const char* text) { return value_t(rapidjson::StringRef(text)); }
  void add(value_t& object, const char* key, value_t&& value) const {
    object.AddMember(rapidjson::StringRef(key), value, *pool);
  }
  void put(value_t& object, const char* key, value_t&& value) const {
    const auto found = object.FindMember(key);
    if (found == object.MemberEnd()) return add(object, key, std::move(value));
    found->value = value;
  }
  static std::size_t size(const value_t& object) { return object.MemberCount(); }

  using entry_t = value_t::Member;
  template <class Visit>
  static void drain(value_t& object, const Visit& visit) {
    for (entry_t& entry : object.GetObject()) visit(entry);
  }
  static value_t& valueOf(entry_t& entry) { return entry.value; }
  void putEntry(value_t& object, entry_t& entry) const {
    const auto found = object.FindMember(entry.name);
    if (found == object.MemberEnd()) {
      object.AddMember(entry.name, entry.value, *pool);
    } else {
      found->value = entry.value;
    }
  }
  void insertEntry(value_t& object, entry_t& entry, value_t&& value) const {
    if (object.FindMember(entry.name) != object.MemberEnd()) return;
    object.AddMember(entry.name, value, *pool);
  }
  template <class Test>
  static bool every(const value_t& object, const Test& test) {
    for (const auto& entry : object.GetObject()) {
      if (!test(entry.value)) return false;
    }
    return true;
  }
};

struct RapidStorage {
  using tree_t = RapidTree;
  struct message_t {
    std::unique_ptr<pool_t> pool;
    value_t payload;
    value_t metadata;
  };
  using prototype_t = rapidjson::Document;

  static prototype_t parse(const std::string& line) {
    prototype_t document;
    document.Parse<rapidjson::kParseFullPrecisionFlag>(line.c_str());
    return document;
  }
  static message_t copy(const prototype_t& prototype) {
    message_t message;
    message.pool = std::make_unique<pool_t>(POOL_CHUNK);
    message.payload.CopyFrom(prototype.FindMember("payload")->value, *message.pool);
    message.metadata.CopyFrom(prototype.FindMember("metadata")->value, *message.pool);
    return message;
  }
  static tree_t tree(message_t& message) { return {message.pool.get()}; }
  static std::string write(const value_t& value) {
    rapidjson::StringBuffer text;
    rapidjson::Writer<rapidjson::StringBuffer> writer(text);
    value.Accept(writer);
    return {text.GetString(), text.GetSize()};
  }
};

} // namespace

std::unique_ptr<Contender> makeRapidJson(const lines_t& lines, std::size_t batch) {
  return std::make_unique<PeerContender<RapidStorage>>(lines, batch);
}

} // namespace com::velanto::connectivity::bench::peers
