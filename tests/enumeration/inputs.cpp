// Every table of up to six slots as a part of a notification: the built plug-in does with it what it
// does with a new table of the same entries, and no block is left.
//
//   part     metadata; payload of each kind; a source; a position; a fragment and a series of a
//            measurement
//   slot     free; deleted; the entry of one of the part's keys, which the codec knows; or another
//            entry, whose hash is any number below the capacity (0 and 1 are also the marks of free
//            and deleted slots), or the hash of the part's first key
//   table    any slots, as long as a lookup reaches each entry; with as many deletions as deleted
//            slots, and, up to five slots, with more, which reused slots leave
//
// Of eight slots, the capacity of tables that the codec uses again, at most two hold entries. A part
// with one key or two comes with six shifts of the hashes of all words, so that its first key starts
// at each slot. An alarm has more fields than six, so here the codec always reports the first missing.
#include <span>
#include <utility>
#include <vector>

#include "tests/enumeration/enumeration.hpp"
#include "tests/value/map_model_blocks.hpp"
#include "tools/host/hosted_plugin.hpp"

namespace com::velanto::connectivity::enumeration {
namespace {

namespace model = test::model;
using model::table_t;
using model::value_t;

// ---- hashes: the number after a '~', or one of a word, shifted

std::uint64_t shift = 0;

std::uint64_t hashOf(const char* text, std::uint64_t seed) {
  if (*text == '~') return std::strtoull(text + 1, nullptr, 10);
  return model::murmur(text, seed) + shift;
}

// ---- values

value_t text(const std::string& content) {
  value_t value;
  value.tag = VLT_TAG_STRING;
  value.text = content;
  return value;
}

value_t whole(std::uint64_t content) {
  value_t value;
  value.tag = VLT_TAG_INTEGER;
  value.bits = content;
  return value;
}

struct field_t {
  const char* key;
  value_t value;
};

value_t mapOf(const std::vector<field_t>& fields) {
  value_t value;
  value.tag = VLT_TAG_MAP;
  for (const field_t& field : fields) {
    const value_t key = text(field.key);
    insert(value.table, *hash_of(key, model::FIXED_SEED), key, field.value);
  }
  return value;
}

value_t mapOf(const table_t& table) {
  value_t value;
  value.tag = VLT_TAG_MAP;
  value.table = table;
  return value;
}

// ---- parts of notifications: the payload around a part, and the parts

const char* const TIME = "2023-04-05T06:07:08.123Z";

value_t aloneAsPayload(value_t part) { return part; }

value_t eventWithSource(value_t part) {
  return mapOf({{"id", text("1")},
                {"source", std::move(part)},
                {"text", text("t")},
                {"time", text(TIME)},
                {"type", text("e")}});
}

value_t source() { return mapOf({{"id", text("7")}}); }

value_t measurementWithFragment(value_t part) {
  return mapOf({{"id", text("1")},
                {"source", source()},
                {"time", text(TIME)},
                {"type", text("m")},
                {"fragment", std::move(part)}});
}

value_t measurementWithSeries(value_t part) {
  return measurementWithFragment(mapOf({{"series", std::move(part)}}));
}

value_t objectWithPosition(value_t part) {
  return mapOf({{"id", text("1")}, {"name", text("n")}, {"o6a_Position", std::move(part)}});
}

value_t series(std::size_t i) { return mapOf({{"value", whole(i)}}); }
value_t numberOrText(std::size_t i) { return i % 2 == 0 ? whole(i) : text("east"); }
// A fragment with a series of its own name, so that the order of fragments does not matter.
value_t fragmentOrNumber(std::size_t i) {
  const std::string name = "series " + std::to_string(i);
  return i % 2 == 0 ? mapOf({{name.c_str(), series(i)}}) : whole(i);
}

struct part_t {
  const char* name;
  const char* kind;                   // of the notification; null: the part is its metadata
  value_t (*payload)(value_t);        // of the notification with this part
  value_t (*other)(std::size_t slot); // the value of an entry under another key
  std::vector<field_t> keys;
};

std::vector<part_t> parts() {
  const field_t id = {"id", text("1")};
  const field_t time = {"time", text(TIME)};
  const field_t type = {"type", text("t")};
  const field_t of_source = {"source", source()};
  return {
      {"metadata", nullptr, nullptr, whole, {{"pulsarPath", text("t/s/events/1")}}},
      {"source", "events", eventWithSource, whole, {id}},
      {"fragment", "measurements", measurementWithFragment, series, {}},
      {"mixed fragment", "measurements", measurementWithFragment, series, {{"number", whole(1)}}},
      {"series",
       "measurements",
       measurementWithSeries,
       numberOrText,
       {{"value", whole(1)}, {"units", text("m")}}},
      {"position", "managedobjects", objectWithPosition, numberOrText, {}},
      {"managed object",
       "managedobjects",
       aloneAsPayload,
       whole,
       {id, {"name", text("n")}, {"creationTime", text(TIME)}}},
      {"measurement",
       "measurements",
       aloneAsPayload,
       fragmentOrNumber,
       {id, of_source, time, type}},
      {"operation",
       "operations",
       aloneAsPayload,
       whole,
       {id, of_source, {"deviceId", text("1")}, {"status", text("FAILED")}}},
      {"event", "events", aloneAsPayload, whole, {id, of_source, {"text", text("t")}, time, type}},
      {"alarm", "alarms", aloneAsPayload, whole, {id, of_source, {"count", whole(3)}}},
  };
}

struct message_t {
  value_t payload;
  table_t metadata;
};

message_t notificationWith(const table_t& table, const part_t& part) {
  if (part.kind == nullptr) return {eventWithSource(source()), table};
  const std::string path = std::string("t/s/") + part.kind + "/1";
  return {part.payload(mapOf(table)), mapOf({{"pulsarPath", text(path)}}).table};
}

// ---- tables

// The tables of a part that have this capacity, up to `most_others` entries under other keys, and no
// entry out of reach.
class Tables {
 public:
  Tables(const part_t& part, std::size_t capacity, std::size_t most_others, Share& share)
      : part_(part), most_others_(most_others), share_(share) {
    table_.exists = true;
    table_.slots.resize(capacity);
    for (std::size_t hash = 0; hash < capacity; ++hash) other_hashes_.push_back(hash);
    for (const field_t& field : part.keys) {
      const value_t key = text(field.key);
      keys_.push_back({*hash_of(key, model::FIXED_SEED), key, field.value});
    }
    if (!keys_.empty()) other_hashes_.push_back(keys_.front().hash);
    used_.resize(keys_.size());
  }

  // Calls `use` with each of them. Tables that differ in the last two slots only are one case.
  template <class Use>
  void each(const Use& use) {
    fillFrom(0, use);
  }

 private:
  template <class Use>
  void fillFrom(std::size_t at, const Use& use) {
    const std::size_t left = table_.slots.size() - at;
    if ((left == 2 || (at == 0 && left < 2)) && !share_.hasNext()) return;
    if (left == 0) {
      if (allWithinReach()) use(std::as_const(table_));
      return;
    }
    const auto put = [&](const model::slot_t& slot) {
      table_.slots[at] = slot;
      fillFrom(at + 1, use);
    };
    put({}); // free
    ++table_.deleted;
    put({1, {}, {}}); // deleted
    --table_.deleted;
    ++table_.live;
    for (std::size_t i = 0; i < keys_.size(); ++i) {
      if (used_[i]) continue;
      used_[i] = true;
      put(keys_[i]);
      used_[i] = false;
    }
    if (others_ < most_others_) {
      ++others_;
      for (const std::uint64_t hash : other_hashes_) {
        const std::string name = "~" + std::to_string(hash) + "." + std::to_string(at);
        put({hash, text(name), part_.other(at)});
      }
      --others_;
    }
    --table_.live;
  }

  [[nodiscard]] bool allWithinReach() const {
    const std::size_t capacity = table_.slots.size();
    for (std::size_t at = 0; at < capacity; ++at) {
      if (!is_live(table_.slots[at])) continue;
      for (std::size_t i = table_.slots[at].hash % capacity; i != at; i = (i + 1) % capacity) {
        if (is_free(table_.slots[i])) return false;
      }
    }
    return true;
  }

  const part_t& part_;
  std::size_t most_others_;
  Share& share_;
  std::vector<model::slot_t> keys_;
  std::vector<std::uint64_t> other_hashes_;
  std::vector<bool> used_;
  std::size_t others_ = 0;
  table_t table_;
};

table_t rebuilt(const table_t& table) {
  table_t fresh;
  for (const model::slot_t& slot : table.slots) {
    if (is_live(slot)) insert(fresh, slot.hash, slot.key, slot.value);
  }
  return fresh;
}

// ---- the plug-in

struct outcome_t {
  Message message;
  std::ptrdiff_t kept = 0;
  std::string lines;
  bool operator==(const outcome_t& other) const {
    return kept == other.kept && lines == other.lines &&
           message.getPayload() == other.message.getPayload() &&
           message.getMetadataMap() == other.message.getMetadataMap();
  }
};

// A chain of one codec, whose link leaves the messages in the batch.
class Chain {
 public:
  explicit Chain(const char* path)
      : library_(path),
        plugin_(library_, "codec", "chain",
                data_t::adopt(block_of(mapOf({{"tenantId", text("t1")}})))) {
    plugin_.link({this, pass}, {this, pass});
    standin_set_log_sink(file, this);
  }
  Chain(const Chain&) = delete;
  Chain& operator=(const Chain&) = delete;
  ~Chain() { standin_set_log_sink(nullptr, nullptr); }

  outcome_t send(const message_t& notification) {
    outcome_t outcome;
    outcome.message = Message(data_t::adopt(block_of(notification.payload)),
                              map_t(block_of(notification.metadata)));
    outcome_ = &outcome;
    if (!plugin_.send(tools::Direction::TOWARDS_HOST, std::span(&outcome.message, 1))) {
      throw std::runtime_error("the batch failed");
    }
    return outcome;
  }

 private:
  static void pass(void* chain, vlt_underlying_message_t* start, vlt_underlying_message_t* end) {
    static_cast<Chain*>(chain)->outcome_->kept += end - start;
  }
  static void file(void* chain, const char*, vlt_log_level_t, const char* text) {
    static_cast<Chain*>(chain)->outcome_->lines += text;
  }

  tools::PluginLibrary library_;
  tools::HostedPlugin plugin_;
  outcome_t* outcome_ = nullptr;
};

std::string described(const table_t& table) {
  std::string description = std::to_string(table.deleted) + " deleted";
  for (const model::slot_t& slot : table.slots) {
    description += is_free(slot) ? ", free" : is_deleted(slot) ? ", deleted" : ", " + slot.key.text;
  }
  return description;
}

// Returns whether the notification passes.
bool compareWithNewTable(Chain& chain, const part_t& part, const table_t& table) {
  const outcome_t expected = chain.send(notificationWith(rebuilt(table), part));
  for (const std::int64_t reused : {0, 2}) {
    if (reused > 0 && table.slots.size() > 5) break;
    table_t same = table;
    same.deleted += reused;
    if (!(chain.send(notificationWith(same, part)) == expected)) {
      throw std::runtime_error(std::string(part.name) + ", " + described(same) +
                               ": not the outcome of a new table");
    }
  }
  return expected.kept == 1;
}

// Sends each table of the part with this number.
void sendAll(Share& share, std::size_t number) {
  std::size_t sent = 0;
  std::size_t passed = 0;
  const std::uint64_t shifts = parts()[number].keys.size() <= 2 ? 6 : 1;
  for (shift = 0; shift < shifts; ++shift) {
    const part_t part = parts()[number];
    Chain chain(VLT_PLUGIN_PATH);
    const auto use = [&](const table_t& table) {
      const std::int64_t live_before = standin_live_blocks_total();
      if (compareWithNewTable(chain, part, table)) ++passed;
      ++sent;
      if (standin_live_blocks_total() == live_before) return;
      throw std::runtime_error(std::string(part.name) + ", " + described(table) +
                               ": blocks are left or freed twice");
    };
    for (std::size_t capacity = 0; capacity <= 6; ++capacity) {
      Tables(part, capacity, capacity, share).each(use);
    }
    if (part.keys.size() <= 1) Tables(part, 8, 1, share).each(use);
  }
  std::cout << parts()[number].name << ": " << sent << " tables, " << passed
            << " of them in notifications that pass" << std::endl;
}

} // namespace
} // namespace com::velanto::connectivity::enumeration

int main(int argc, char** argv) {
  namespace enumeration = com::velanto::connectivity::enumeration;
  return enumeration::enumerate(argc, argv, [](enumeration::Share& share) {
    standin_set_string_hash(enumeration::hashOf);
    for (std::size_t i = 0; i < enumeration::parts().size(); ++i) enumeration::sendAll(share, i);
  });
}
