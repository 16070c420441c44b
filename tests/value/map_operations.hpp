// Reads bytes as a program of map operations and runs it on real maps and on their models side by
// side. A random test and a fuzzer can drive it alike: any sequence of bytes is a program.
//
//   program     byte: number of different keys; then operations until the bytes end
//   operation   byte: which one (see OPERATIONS); byte: on which map; then its arguments
//
// Compares the result of each operation. Compares its table as well, at every operation while it is
// small, now and then when it is large, and all tables at the end. A key or a value that was given
// away must be empty, all others must stay as they were.
//
// Needs the development host, which refuses allocations and makes blocks.
#ifndef VLT_TESTS_VALUE_MAP_OPERATIONS_HPP
#define VLT_TESTS_VALUE_MAP_OPERATIONS_HPP

#include <array>
#include <cstdint>
#include <exception>
#include <new>
#include <span>
#include <string>
#include <utility>

#include "tests/value/map_model_blocks.hpp"
#include "tests/value/map_program.hpp"
#include "value/get_visitor.hpp"
#include "value/hashes.hpp"

namespace com::velanto::connectivity::test::model {

class MapOperations {
 public:
  explicit MapOperations(std::span<const std::uint8_t> program) : input_(program) {}

  // Runs the program to its end or to the first difference between a map and its model; returns
  // the difference, or nothing.
  difference_t run() {
    input_.choose_keys();
    while (!input_.at_end()) {
      const operation_t& operation = choose(input_.byte());
      map_ = &any_map();
      difference_t d = (this->*operation.run)();
      if (d.empty() && is_due_for_comparison()) d = compare(*map_);
      ++done_;
      if (!d.empty()) return operation.name + (" (operation " + std::to_string(done_)) + "): " + d;
    }
    for (const pair_t& each : maps_) {
      if (difference_t d = compare(each); !d.empty()) return "at the end: " + d;
    }
    return {};
  }

  // The number of operations so far.
  [[nodiscard]] std::size_t done() const { return done_; }

 private:
  struct pair_t {
    map_t real;
    table_t model;
  };

  struct operation_t {
    int weight; // of 256
    const char* name;
    difference_t (MapOperations::*run)();
  };

  static const operation_t& choose(int byte) {
    static constexpr std::array OPERATIONS = {
        operation_t{40, "insert", &MapOperations::insert_key_and_value},
        operation_t{20, "insert a pair", &MapOperations::insert_pair},
        operation_t{40, "assign by subscript", &MapOperations::insert_by_subscript},
        operation_t{25, "maybe_insert, copying", &MapOperations::insert_copying},
        operation_t{20, "maybe_insert, moving", &MapOperations::insert_moving},
        operation_t{35, "find", &MapOperations::find},
        operation_t{35, "erase the entry of a key", &MapOperations::erase_found},
        operation_t{14, "erase any entry", &MapOperations::erase_any},
        operation_t{3, "iterate", &MapOperations::iterate},
        operation_t{4, "copy", &MapOperations::copy},
        operation_t{7, "compare with another map", &MapOperations::compare_maps},
        operation_t{4, "hash", &MapOperations::hash},
        operation_t{2, "move to another map", &MapOperations::move_to_another},
        operation_t{1, "clear by moving out", &MapOperations::clear},
        operation_t{6, "refuse an allocation of the next operation", &MapOperations::arm}};
    std::size_t i = 0;
    for (; byte >= OPERATIONS[i].weight; ++i) byte -= OPERATIONS[i].weight;
    return OPERATIONS[i];
  }

  pair_t& any_map() { return maps_[input_.byte() % maps_.size()]; }

  [[nodiscard]] bool is_due_for_comparison() const {
    return map_->model.slots.size() <= 32 || done_ % 64 == 0;
  }

  static difference_t compare(const pair_t& pair) {
    return difference(pair.real.table(), pair.model);
  }

  [[nodiscard]] const vlt_underlying_map_table_entry_t& slot_of(std::size_t index) const {
    const auto* const head = map_->real.table();
    return reinterpret_cast<const vlt_underlying_map_table_entry_t*>(head + 1)[index];
  }

  // Calls `action` on the real map, refusing an allocation if that is its turn. Returns the message
  // of its exception.
  template <class Action>
  std::string refusal_of(const Action& action) {
    standin_fail_allocation(1); // forgets the refusals of an earlier request
    standin_fail_allocation(std::exchange(armed_, 0));
    std::string error;
    try {
      action();
    } catch (const std::exception& e) {
      error = e.what();
    }
    standin_fail_allocation(0);
    return error;
  }

  // Whether the last action ran out of memory.
  static bool was_refused() { return standin_failed_allocations() > 0; }

  static difference_t differing_error(const std::string& actual, const std::string& expected) {
    if (actual == expected) return {};
    return "the error is \"" + actual + "\" instead of \"" + expected + '"';
  }

  // An operation without memory says so and changes nothing.
  difference_t compare_after_refusal(const std::string& error) const {
    const difference_t d = differing_error(error, std::bad_alloc().what());
    return d.empty() ? compare(*map_) : d;
  }

  // ---- insertions

  enum class way_t { INSERT, INSERT_PAIR, MOVE, COPY, SUBSCRIPT };

  // An entry to insert, and the result of the real insertion.
  struct insertion_request_t {
    way_t way;
    value_t key;
    value_t value;
    data_t real_key = data_t::adopt(block_of(key));
    data_t real_value = data_t::adopt(block_of(value));
    bool was_inserted = false;
    const data_t* key_in_slot = nullptr;
    const data_t* value_in_slot = nullptr;
  };

  static void keep(insertion_request_t& request, const std::pair<map_t::iterator, bool>& returned) {
    const map_t::pair entry = *returned.first;
    request.was_inserted = returned.second;
    request.key_in_slot = &entry.first;
    request.value_in_slot = &entry.second;
  }

  static void call_insertion(map_t& map, insertion_request_t& request) {
    data_t& key = request.real_key;
    data_t& value = request.real_value;
    switch (request.way) {
      case way_t::INSERT:
        return keep(request, map.insert(std::move(key), std::move(value)));
      case way_t::INSERT_PAIR: {
        std::pair<data_t, data_t> entry(std::move(key), std::move(value));
        keep(request, map.insert(std::move(entry)));
        key = std::move(entry.first);
        value = std::move(entry.second);
        return;
      }
      case way_t::MOVE:
        return keep(request, map.maybe_insert(map_t::pair(key, value)));
      case way_t::COPY:
        return keep(request, map.maybe_insert(map_t::const_pair(key, value)));
      case way_t::SUBSCRIPT:
        data_t& place = map[std::move(key)];
        request.value_in_slot = &place;
        place = std::move(value);
    }
  }

  static std::string expected_error(const insertion_request_t& request) {
    const bool checks_for_empty = request.way != way_t::COPY;
    if (checks_for_empty && request.key.tag == VLT_TAG_EMPTY) return "Cannot have a null key";
    if (!hash_of(request.key, FIXED_SEED)) return "Cannot use custom values as a key";
    return {};
  }

  difference_t insert_by(way_t way) {
    const value_t key = input_.key();
    const value_t value = input_.value();
    insertion_request_t request{way, key, value};
    const std::string error = refusal_of([&] { call_insertion(map_->real, request); });
    if (was_refused()) return compare_after_refusal(error);
    const std::string expected = expected_error(request);
    if (difference_t d = differing_error(error, expected); !d.empty()) return d;
    return expected.empty() ? compare_insertion(request) : compare(*map_);
  }

  difference_t compare_insertion(const insertion_request_t& request) {
    const bool copies = request.way == way_t::COPY;
    const bool is_subscript = request.way == way_t::SUBSCRIPT;
    // Looks up the given key, but stores a copy of it: a borrowed key does not find an owned one of
    // the same content, and its copy is then a second entry.
    const std::uint64_t hash = *hash_of(request.key, FIXED_SEED);
    const insertion_t made = insert(map_->model, hash, request.key, request.value);
    slot_t& slot = map_->model.slots[made.slot];
    if (copies && made.inserted) slot = {hash, copied(request.key), copied(request.value)};
    if (is_subscript) slot.value = request.value;
    if (!is_subscript && request.was_inserted != made.inserted) {
      return differing("whether it was inserted", request.was_inserted, made.inserted);
    }
    const auto& entry = slot_of(made.slot);
    if (request.value_in_slot->underlying() != &entry.value ||
        (!is_subscript && request.key_in_slot->underlying() != &entry.key)) {
      return "the entry returned is another one";
    }
    if (difference_t d = difference(entry, slot); !d.empty()) return d;
    const bool consumed = is_subscript || (made.inserted && !copies);
    return compare_given(request, consumed);
  }

  static difference_t compare_given(const insertion_request_t& request, bool consumed) {
    const value_t nothing;
    difference_t d = at_place(
        "key given", difference(*request.real_key.underlying(), consumed ? nothing : request.key));
    if (!d.empty()) return d;
    return at_place("value given", difference(*request.real_value.underlying(),
                                              consumed ? nothing : request.value));
  }

  difference_t insert_key_and_value() { return insert_by(way_t::INSERT); }
  difference_t insert_pair() { return insert_by(way_t::INSERT_PAIR); }
  difference_t insert_moving() { return insert_by(way_t::MOVE); }
  difference_t insert_copying() { return insert_by(way_t::COPY); }
  difference_t insert_by_subscript() { return insert_by(way_t::SUBSCRIPT); }

  // ---- look-ups and erasures

  // Looks `key` up on both sides. `found` is the model's slot; the iterator points at the same one.
  difference_t find_both(map_t::iterator& position, std::optional<std::size_t>& found) {
    const value_t key = input_.key();
    const data_t real_key = data_t::adopt(block_of(key));
    const std::string error = refusal_of([&] { position = map_->real.find(real_key); });
    const hash_t hash = hash_of(key, FIXED_SEED);
    if (!hash) {
      position = map_->real.end();
      return differing_error(error, "Cannot use custom values as a key");
    }
    if (difference_t d = differing_error(error, ""); !d.empty()) return d;
    found = look_up(map_->model, key, *hash).found;
    const bool was_found = position != map_->real.end();
    if (was_found != found.has_value()) {
      return differing("whether it was found", was_found, found.has_value());
    }
    if (found && (*position).first.underlying() != &slot_of(*found).key) {
      return "the entry found is another one";
    }
    return {};
  }

  difference_t find() {
    map_t::iterator position;
    std::optional<std::size_t> found;
    return find_both(position, found);
  }

  difference_t erase_found() {
    map_t::iterator position;
    std::optional<std::size_t> found;
    if (difference_t d = find_both(position, found); !d.empty()) return d;
    map_->real.erase(position); // the end erases nothing
    if (!found) return {};
    erase(map_->model, *found);
    return difference(slot_of(*found), map_->model.slots[*found]);
  }

  // Also reaches entries that no look-up finds: NaN and unknown keys.
  difference_t erase_any() {
    if (map_->model.live == 0) return {};
    const auto live = static_cast<std::uint64_t>(map_->model.live);
    const std::uint64_t skipped = (input_.byte() * std::uint64_t{256} + input_.byte()) % live;
    auto position = map_->real.begin();
    std::size_t slot = 0;
    while (!is_live(map_->model.slots[slot])) ++slot;
    for (std::uint64_t i = 0; i < skipped; ++i) {
      ++position;
      do ++slot;
      while (!is_live(map_->model.slots[slot]));
    }
    if ((*position).first.underlying() != &slot_of(slot).key) return "the iterator is elsewhere";
    map_->real.erase(position);
    erase(map_->model, slot);
    return difference(slot_of(slot), map_->model.slots[slot]);
  }

  difference_t iterate() {
    const map_t& real = map_->real;
    auto position = real.begin();
    for (std::size_t i = 0; i < map_->model.slots.size(); ++i) {
      if (!is_live(map_->model.slots[i])) continue;
      if (position == real.end()) return "the iteration ends early";
      if ((*position).second.underlying() != &slot_of(i).value)
        return "the iteration skips entries";
      ++position;
    }
    return position == real.end() ? difference_t() : "the iteration goes on after the last entry";
  }

  // ---- whole maps

  difference_t copy() {
    pair_t& target = any_map();
    map_t made;
    const std::string error = refusal_of([&] { made = map_->real.copy(); });
    if (was_refused()) return compare_after_refusal(error);
    if (difference_t d = differing_error(error, ""); !d.empty()) return d;
    target.real = std::move(made);
    target.model = copied(map_->model);
    return compare(target);
  }

  difference_t compare_maps() {
    const pair_t& other = any_map();
    return differing("whether they are equal", map_->real == other.real,
                     equal(map_->model, other.model));
  }

  difference_t hash() {
    std::uint64_t actual = 0;
    const std::string error = refusal_of([&] { actual = hashes::hash(map_->real); });
    const hash_t expected = hash_of(map_->model);
    if (!expected) return differing_error(error, "Cannot use custom values as a key");
    const difference_t d = differing_error(error, "");
    return d.empty() ? differing("the map's hash", actual, *expected) : d;
  }

  difference_t move_to_another() {
    pair_t& target = any_map();
    if (&target == map_) return {};
    target.real = std::move(map_->real);
    target.model = std::exchange(map_->model, table_t());
    return compare(target);
  }

  difference_t clear() {
    const map_t old = std::move(map_->real);
    map_->model = table_t();
    return differing("the size", map_->real.size(), std::size_t{0});
  }

  difference_t arm() {
    armed_ = 1 + input_.byte() % 4;
    return {};
  }

  MapProgram input_;
  std::array<pair_t, 3> maps_;
  pair_t* map_ = maps_.data(); // the one that the operation works on
  std::uint64_t armed_ = 0;    // the allocation of the next operation to refuse; 0: none
  std::size_t done_ = 0;
};

} // namespace com::velanto::connectivity::test::model

#endif
