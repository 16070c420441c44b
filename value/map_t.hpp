// The host's hash map from values to values: open addressing with linear probing, in a table that
// the host allocates and reads in place. The place of an entry is part of the interface.
//
//   table   0 host    8 live   16 capacity   24 deleted   32 slots
//   slot    0 hash    8 key    24 value                   (40 bytes)
//
//   state     hash   key         a probe
//   free      0      empty       ends here
//   deleted   1      empty       goes on; an insertion takes the first one on its way
//   live      any    not empty   compares the hash, then the key
//
// (A live entry may hash to 0 or 1: its key tells it apart.)
//
// Lookup starts at slot hash mod capacity and probes upwards, wrapping at the end. It stops at the
// key, at a free slot, or back at its start.
//
// Insertion of a key that is not there into a map without a table allocates 8 slots. Otherwise it
// first grows the table when it has no slots at all or capacity × 0.75 < live + deleted, to
// 2 × live + 2 slots but at least 8: the new capacity follows the live count, so a table full of
// deleted slots may be rebuilt at the same size or smaller. Worked: the 7th key of a fresh table
// finds 0.75 × 8 = 6 not below 6 and stays; the 8th makes 2 × 7 + 2 = 16 slots. Reusing a deleted
// slot leaves the deleted count alone: it counts deletions since the last rebuild, so that frequent
// erasing brings the next rebuild forward.
//
// Erasing leaves a deleted slot, since lookups must still reach entries displaced past the slot.
//
// An iterator remembers the slot array, the capacity and the live count; it is valid while the map
// still has them. Use after that throws "Iterator invalidated by modifying map".
#ifndef VLT_VALUE_MAP_T_HPP
#define VLT_VALUE_MAP_T_HPP

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <type_traits>
#include <utility>

#include "host/storage.h"
#include "value/owned_block.hpp"
#include "value/table_rules.hpp"

namespace com::velanto::connectivity {

class data_t;
class hashed_key_t;
struct map_entry_t;
struct map_slot_t;

// A key with its hash, for the length of a call. A constant (value/hashed_key.hpp) and an entry
// know their hash. The constructor hashes any other value; a custom one throws std::runtime_error.
struct key_ref_t {
  key_ref_t(const data_t& any);
  key_ref_t(const hashed_key_t& constant) noexcept;
  key_ref_t(const map_entry_t& entry) noexcept;

  const data_t& key;
  std::uint64_t hash;
};

class map_t : public owned_block_t<vlt_underlying_map_table_t, vlt_free_map> {
 public:
  // References into a slot: the key and the value of one entry.
  using pair = std::pair<data_t&, data_t&>;
  using const_pair = std::pair<const data_t&, const data_t&>;
  template <bool IS_CONST>
  class _iterator;
  using iterator = _iterator<false>;
  using const_iterator = _iterator<true>;

  using owned_block_t::owned_block_t;

  // A deep copy, slot by slot: same capacity, positions, hashes, deleted slots and counts.
  // Throws std::bad_alloc; nothing leaks then.
  [[nodiscard]] map_t copy() const;

  [[nodiscard]] std::size_t size() const noexcept {
    return block_ == nullptr ? 0 : static_cast<std::size_t>(block_->live);
  }
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }

  // Lookups throw std::bad_alloc without memory to compare keys with containers in containers;
  // looking for any other key never throws.

  // The entry under `key`, or end().
  [[nodiscard]] iterator find(key_ref_t key);
  [[nodiscard]] const_iterator find(key_ref_t key) const;
  // Its value, or null. Valid until the map is next modified.
  [[nodiscard]] const data_t* find_value(key_ref_t key) const;

  // The value under `key`, inserted empty when absent; consumes the key in either case. The
  // reference lives until the next change of the map. Throws as insert does.
  data_t& operator[](data_t&& key);

  // Inserts, taking over key and value, when the key is absent; otherwise changes neither the map
  // nor the arguments. Returns the entry, and whether it is new. Throws std::runtime_error for an
  // empty or a custom key, std::bad_alloc; the entries then stay as they were.
  std::pair<iterator, bool> insert(data_t&& key, data_t&& value);
  std::pair<iterator, bool> insert(std::pair<data_t, data_t>&& entry);

  // The same for an entry with its hash. Parts that do not move into the map stay in the entry.
  void insert(map_entry_t&& entry);
  // As insert, but an entry with a present key replaces the value, not the key.
  void assign(map_entry_t&& entry);
  // As insert, without looking whether the key is there: it must not be, nor may it be empty.
  void add(std::uint64_t hash, data_t&& key, data_t&& value);

  // The workers of the inserts: one copies key and value, the other moves them. Only the moving one
  // refuses an empty key; the asymmetry is the host's.
  std::pair<iterator, bool> maybe_insert(const const_pair& entry);
  std::pair<iterator, bool> maybe_insert(pair&& entry);

  // Removes the entry at `position`; end() removes nothing. Throws std::runtime_error for an
  // iterator of another map or one that a modification has invalidated.
  void erase(const iterator& position);

  // Removes the entry under `key` and returns whether there was one. Hands it in its slot to `use`
  // as map_entry_t&&. `use` must leave this map alone. The map frees the parts that `use` leaves; an
  // entry for which `use` throws stays. Defined in value/map_slot.hpp.
  template <class Use>
  bool extract(key_ref_t key, const Use& use);

  // Hands every entry to `use`, in the order of iteration, as map_entry_t&&, and returns the
  // cleared map. An exception of `use` ends it, and frees the rest. Defined in value/map_slot.hpp.
  template <class Use>
  map_t drain(const Use& use) &&;

  // Frees all entries and keeps the table: all its slots are free then, and its head keeps the
  // host's own word.
  void clear() noexcept;

  [[nodiscard]] iterator begin();
  [[nodiscard]] iterator end();
  [[nodiscard]] const_iterator begin() const;
  [[nodiscard]] const_iterator end() const;

  // Same entries, in any order, with any capacity and history. Throws std::bad_alloc.
  bool operator==(const map_t& other) const;

  // Number of slots; 0 without a table.
  [[nodiscard]] std::int64_t capacity() const noexcept {
    return block_ == nullptr ? 0 : block_->capacity;
  }
  // The table, still owned by the map; null when there is none.
  [[nodiscard]] const vlt_underlying_map_table_t* table() const noexcept { return block_; }

 private:
  // The end of a lookup: the slot of the key, or null, and the slot for its insertion, or null when
  // no slot is left.
  struct probe_t {
    map_slot_t* found;
    map_slot_t* vacant;
  };

  [[nodiscard]] map_slot_t* slots() const noexcept;
  [[nodiscard]] map_slot_t* find_slot(key_ref_t key) const;
  [[nodiscard]] std::int64_t index_of(key_ref_t key) const;
  [[nodiscard]] probe_t find_for_insert(key_ref_t key) const;
  [[nodiscard, gnu::noinline]] probe_t find_among_equal_hashes(key_ref_t key, probe_t at) const;
  [[nodiscard]] map_slot_t* find_vacant(std::uint64_t hash) const noexcept;
  [[nodiscard]] bool must_grow() const noexcept;
  void grow();
  std::int64_t place(std::uint64_t hash, map_slot_t* vacant, data_t& key, data_t& value);
  void vacate(map_slot_t& slot) noexcept;
  void put(map_slot_t& vacant, std::uint64_t hash, data_t& key, data_t& value) noexcept;
};

template <bool IS_CONST>
class map_t::_iterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = std::pair<data_t, data_t>;
  using difference_type = std::ptrdiff_t;
  using reference = std::conditional_t<IS_CONST, const_pair, pair>;
  using pointer = void; // there is no pair in the table to point to
  using map_pointer = std::conditional_t<IS_CONST, const map_t*, map_t*>;

  // Of no map: equals its like, and is never valid.
  _iterator() noexcept = default;

  // Throw std::runtime_error after a change of the map, or, for the comparison, when the iterators
  // belong to different maps.
  reference operator*() const;
  _iterator& operator++();
  bool operator==(const _iterator& other) const;

 private:
  friend class map_t;
  _iterator(map_pointer map, std::int64_t index) noexcept;
  [[nodiscard]] bool at_end() const noexcept { return index_ == capacity_; }
  void check() const;
  void skip_to_live() noexcept;

  map_pointer map_ = nullptr;
  map_slot_t* slots_ = nullptr;
  std::int64_t capacity_ = 0;
  std::int64_t index_ = 0;
  std::int64_t live_ = 0;
};

extern template class map_t::_iterator<false>;
extern template class map_t::_iterator<true>;

static_assert(sizeof(map_t) == sizeof(void*), "a value is viewed in place as its map");

} // namespace com::velanto::connectivity

#endif
