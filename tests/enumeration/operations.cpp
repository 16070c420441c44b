// Small maps in every state that operations lead to, and every operation in each of these states: the
// map equals its model, slot for slot.
//
//   keys      three of any hash below 24, which is any three homes in 8 slots, hashes alike or not;
//             four or five of a few hashes, so that tables grow beyond 8 slots
//   start     no table, or a free one of up to 6 or of 8 slots
//   state     the table's bytes, without values: no operation's course depends on a value
//
// The search goes on until it finds no new state. So it covers sequences of operations of any length.
// Prints the sum over all choices of hashes, which are the cases that processes share.
#include <algorithm>
#include <deque>
#include <set>
#include <vector>

#include "tests/enumeration/enumeration.hpp"
#include "tests/value/map_model_blocks.hpp"
#include "value/get_visitor.hpp"
#include "value/hashes.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::enumeration {
namespace {

namespace model = test::model;
using model::difference_t;
using model::differing;

// The hash of a key is the number that its string begins with.
std::uint64_t writtenHash(const char* text, std::uint64_t) {
  return std::strtoull(text, nullptr, 10);
}

model::value_t valueOf(std::uint32_t tag, std::uint64_t bits, std::string text = "") {
  model::value_t value;
  value.tag = tag;
  value.bits = bits;
  value.text = std::move(text);
  return value;
}

struct named_key_t {
  std::uint64_t hash;
  model::value_t text;
  [[nodiscard]] data_t real() const { return data_t(text.text.c_str()); }
};

struct maps_t {
  map_t real;
  model::table_t model;

  explicit maps_t(const model::table_t& table) : real(block_of(table)), model(table) {}
  [[nodiscard]] difference_t compared() const { return difference(real.table(), model); }
  [[nodiscard]] const map_slot_t* slot(std::size_t index) const {
    return &slots_of(real.table())[index];
  }
};

void makeAllFree(model::table_t& table) {
  for (model::slot_t& slot : table.slots) slot = {};
  table.live = table.deleted = 0;
}

// ---- operations on one key. Each changes both maps, and returns how its own result differs

enum class Way { INSERT, INSERT_PAIR, SUBSCRIPT, MOVE, COPY, ENTRY, ASSIGN, ADD };

// Whether the map says that it inserted; for ways that say nothing, `expected`.
template <Way WAY>
bool inserted(map_t& map, const named_key_t& key, data_t value, bool expected) {
  data_t real = key.real();
  switch (WAY) {
    case Way::INSERT:
      return map.insert(std::move(real), std::move(value)).second;
    case Way::INSERT_PAIR:
      return map.insert(std::pair(std::move(real), std::move(value))).second;
    case Way::MOVE:
      return map.maybe_insert(map_t::pair(real, value)).second;
    case Way::COPY:
      return map.maybe_insert(map_t::const_pair(real, value)).second;
    case Way::SUBSCRIPT:
      map[std::move(real)] = std::move(value);
      break;
    case Way::ENTRY:
      map.insert(map_entry_t{key.hash, std::move(real), std::move(value)});
      break;
    case Way::ASSIGN:
      map.assign(map_entry_t{key.hash, std::move(real), std::move(value)});
      break;
    case Way::ADD:
      map.add(key.hash, std::move(real), std::move(value));
      break;
  }
  return expected;
}

template <Way WAY>
difference_t insertBy(maps_t& maps, const named_key_t& key) {
  const model::value_t value = valueOf(VLT_TAG_INTEGER, 100 + static_cast<unsigned>(WAY));
  const bool is_new = !look_up(maps.model, key.text, key.hash).found;
  if (WAY == Way::ADD && !is_new) return {}; // not allowed
  const bool said = inserted<WAY>(maps.real, key, data_t::adopt(block_of(value)), is_new);
  const std::size_t slot = insert(maps.model, key.hash, key.text, value).slot;
  if (WAY == Way::SUBSCRIPT || WAY == Way::ASSIGN) maps.model.slots[slot].value = value;
  return differing("whether it was inserted", said, is_new);
}

// Looks for the key in each way and compares the slots.
difference_t find(maps_t& maps, const named_key_t& key) {
  const auto found = look_up(maps.model, key.text, key.hash).found;
  const data_t real = key.real();
  const data_t* const expected = found ? &maps.slot(*found)->value : nullptr;
  if (maps.real.find_value(real) != expected) return "find_value gives another entry";
  const auto position = maps.real.find(real);
  if (position == maps.real.end()) return found ? "find gives none" : "";
  return &(*position).second == expected ? "" : "find gives another entry";
}

difference_t erase(maps_t& maps, const named_key_t& key) {
  maps.real.erase(maps.real.find(key.real()));
  if (const auto at = look_up(maps.model, key.text, key.hash).found) erase(maps.model, *at);
  return {};
}

template <bool TAKES>
difference_t extract(maps_t& maps, const named_key_t& key) {
  const auto at = look_up(maps.model, key.text, key.hash).found;
  map_entry_t taken;
  const data_t real = key.real();
  const bool said = maps.real.extract(real, [&](map_entry_t&& entry) noexcept {
    if (TAKES) taken = std::move(entry);
  });
  if (at && TAKES && !(taken.key == real)) return "it extracts another entry";
  if (at) erase(maps.model, *at);
  return differing("whether it extracted", said, at.has_value());
}

struct operation_t {
  const char* name;
  difference_t (*run)(maps_t&, const named_key_t&);
};
constexpr operation_t OPERATIONS[] = {
    {"insert", insertBy<Way::INSERT>},
    {"insert a pair", insertBy<Way::INSERT_PAIR>},
    {"operator[]", insertBy<Way::SUBSCRIPT>},
    {"maybe_insert, moving", insertBy<Way::MOVE>},
    {"maybe_insert, copying", insertBy<Way::COPY>},
    {"insert an entry", insertBy<Way::ENTRY>},
    {"assign", insertBy<Way::ASSIGN>},
    {"add", insertBy<Way::ADD>},
    {"find", find},
    {"erase", erase},
    {"extract, taking the entry", extract<true>},
    {"extract, leaving the entry", extract<false>},
};

// ---- operations on a whole map; the key means nothing

difference_t clear(maps_t& maps, const named_key_t&) {
  maps.real.clear();
  makeAllFree(maps.model);
  return {};
}

// The slots of the live entries, in order.
std::vector<const model::slot_t*> entriesOf(const model::table_t& table) {
  std::vector<const model::slot_t*> entries;
  for (const model::slot_t& slot : table.slots) {
    if (is_live(slot)) entries.push_back(&slot);
  }
  return entries;
}

difference_t drain(maps_t& maps, const named_key_t&) {
  auto entries = entriesOf(maps.model);
  std::size_t same = 0;
  std::size_t drained = 0;
  maps.real = std::move(maps.real).drain([&](map_entry_t&& entry) noexcept {
    if (drained < entries.size() &&
        entries[drained]->key.text == *entry.key.get_if<const char*>()) {
      ++same;
    }
    ++drained;
  });
  const bool is_right = same == entries.size() && drained == same;
  makeAllFree(maps.model);
  return is_right ? "" : "it hands out other entries";
}

difference_t iterate(maps_t& maps, const named_key_t&) {
  const map_t& real = maps.real;
  auto position = real.begin();
  for (std::size_t i = 0; i < maps.model.slots.size(); ++i) {
    if (!is_live(maps.model.slots[i])) continue;
    if (position == real.end() || &(*position).first != &maps.slot(i)->key) {
      return "it gives other entries";
    }
    ++position;
  }
  return position == real.end() ? "" : "it goes on after the last entry";
}

// A copy, and the same entries in a table of another size; then with one entry less.
difference_t compareMaps(maps_t& maps, const named_key_t&) {
  const map_t copy = maps.real.copy();
  if (auto d = difference(copy.table(), maps.model); !d.empty()) return "copy: " + d;
  model::table_t moved = maps.model;
  if (moved.exists) rebuild(moved, 11);
  maps_t other(moved);
  if (!(maps.real == other.real) || !(other.real == copy)) return "equal maps differ";
  if (hashes::hash(maps.real) != hashes::hash(other.real)) return "equal maps have other hashes";
  if (other.real.empty()) return {};
  other.real.erase(other.real.begin());
  return maps.real == other.real || other.real == maps.real ? "different maps are equal" : "";
}

constexpr operation_t OPERATIONS_ON_ALL[] = {
    {"clear", clear},
    {"drain", drain},
    {"iterate", iterate},
    {"compare", compareMaps},
};

// ---- the search

constexpr std::size_t CAPACITIES[] = {0, 1, 2, 3, 4, 5, 6, 8};

// All maps with keys of these hashes.
class Search {
 public:
  explicit Search(const std::vector<std::uint64_t>& hashes) {
    for (std::size_t i = 0; i < hashes.size(); ++i) {
      const std::string text = std::to_string(hashes[i]) + static_cast<char>('a' + i);
      keys_.push_back({hashes[i], valueOf(VLT_TAG_STRING, 0, text)});
    }
  }

  void run() {
    reach({});
    for (const std::size_t capacity : CAPACITIES) {
      model::table_t table;
      table.exists = true;
      table.slots.resize(capacity);
      reach(std::move(table));
    }
    for (; !waiting_.empty(); waiting_.pop_front()) {
      for (const operation_t& each : OPERATIONS_ON_ALL) attempt(each, keys_.front());
      for (const named_key_t& key : keys_) {
        for (const operation_t& each : OPERATIONS) attempt(each, key);
      }
    }
  }

  [[nodiscard]] std::size_t states() const { return known_.size(); }
  [[nodiscard]] std::size_t steps() const { return steps_; }
  [[nodiscard]] std::size_t longestTable() const { return longest_table_; }

 private:
  // Remembers a table as one to work on, unless it is known.
  void reach(model::table_t&& table) {
    longest_table_ = std::max(longest_table_, table.slots.size());
    if (known_.insert(nameOf(table)).second) waiting_.push_back(std::move(table));
  }

  void attempt(const operation_t& operation, const named_key_t& key) {
    const model::table_t& before = waiting_.front();
    maps_t maps(before);
    difference_t d = operation.run(maps, key);
    if (d.empty()) d = maps.compared();
    if (!d.empty()) {
      throw std::runtime_error(nameOf(before) + ", " + operation.name + " " + key.text.text + ": " +
                               d);
    }
    ++steps_;
    reach(std::move(maps.model));
  }

  // A table as a text: its deleted count, then a letter for each slot.
  static std::string nameOf(const model::table_t& table) {
    if (!table.exists) return "no table";
    std::string name = std::to_string(table.deleted) + " deleted ";
    for (const model::slot_t& slot : table.slots) {
      name += is_free(slot) ? '.' : is_deleted(slot) ? '-' : slot.key.text.back();
    }
    return name;
  }

  std::vector<named_key_t> keys_;
  std::set<std::string> known_;
  std::deque<model::table_t> waiting_;
  std::size_t steps_ = 0;
  std::size_t longest_table_ = 0;
};

// Searches with `key_count` keys, for each choice among the hashes. Keys of one hash are alike.
void searchAll(Share& share, std::size_t key_count, const std::vector<std::uint64_t>& hashes) {
  const std::int64_t live_before = standin_live_blocks_total();
  std::size_t choices = 0;
  std::size_t states = 0;
  std::size_t steps = 0;
  std::size_t longest_table = 0;
  std::vector<std::size_t> chosen(key_count, 0); // ascending places in `hashes`
  while (true) {
    if (share.hasNext()) {
      std::vector<std::uint64_t> of_keys;
      of_keys.reserve(key_count);
      for (const std::size_t place : chosen) of_keys.push_back(hashes[place]);
      Search search(of_keys);
      search.run();
      ++choices;
      states += search.states();
      steps += search.steps();
      longest_table = std::max(longest_table, search.longestTable());
    }
    std::size_t last = key_count;
    while (last > 0 && chosen[last - 1] + 1 == hashes.size()) --last;
    if (last == 0) break;
    std::fill(chosen.begin() + static_cast<std::ptrdiff_t>(last) - 1, chosen.end(),
              chosen[last - 1] + 1);
  }
  if (standin_live_blocks_total() != live_before) throw std::runtime_error("blocks are left");
  std::cout << key_count << " keys: " << choices << " choices of hashes, " << states << " states, "
            << steps << " operations, up to " << longest_table << " slots" << std::endl;
}

} // namespace
} // namespace com::velanto::connectivity::enumeration

int main(int argc, char** argv) {
  namespace enumeration = com::velanto::connectivity::enumeration;
  return enumeration::enumerate(argc, argv, [](enumeration::Share& share) {
    standin_set_string_hash(enumeration::writtenHash);
    std::vector<std::uint64_t> below_24;
    for (std::uint64_t hash = 0; hash < 24; ++hash) below_24.push_back(hash);
    enumeration::searchAll(share, 3, below_24);
    enumeration::searchAll(share, 4, {0, 1, 2, 3, 4, 5, 6, 7});
    enumeration::searchAll(share, 5, {1, 7});
  });
}
