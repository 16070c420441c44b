// A table of the host: slots, lookup, insertion, removal.
//
//   state     hash   key         a probe
//   free      0      empty       ends here
//   deleted   1      empty       goes on; an insertion reuses the first one
//   live      any    not empty   compares the hash, then the key
//
// A probe starts at slot `hash mod capacity`, goes upwards and wraps at the end.
#ifndef VLT_PLAIN_BUILD_TABLE_HPP
#define VLT_PLAIN_BUILD_TABLE_HPP

#include <optional>
#include <span>
#include <vector>

#include "tests/plain_build/value.hpp"

namespace plain_build {

using Slot = vlt_underlying_map_table_entry_t;

// All slots of `table`, live or not; none for null.
std::span<Slot> slotsOf(RawTable* table) noexcept;
bool isLive(const Slot& slot) noexcept;

// The live slot of `key`, or null. Throws std::runtime_error when the key has a custom object.
Slot* findSlot(RawTable* table, const RawValue& key);
Slot* findSlot(RawTable* table, const char* key);

struct Entry {
  Value key;
  Value value;
};

// Owns a table; no table until the first insertion. Insertions throw std::bad_alloc, and
// std::runtime_error for a key with a custom object; they leave the table as it was.
class Table {
 public:
  Table() noexcept = default;
  explicit Table(RawTable* taken) noexcept : table_(taken) {}
  Table(Table&& other) noexcept : table_(other.release()) {}
  Table& operator=(Table&& other) = delete;
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;
  ~Table();

  RawTable* raw() const noexcept { return table_; }
  // Hands the table to the caller; this has none after it.
  RawTable* release() noexcept;
  // Hands the table to the value, also when there is none.
  Value toValue() noexcept;
  bool empty() const noexcept { return table_ == nullptr || table_->live == 0; }

  // Sets the value of `key`; an entry with that key keeps its key.
  void set(Value key, Value value);
  void set(const char* key, Value value) { set(Value::ofText(key), std::move(value)); }
  // Adds an entry unless there is one with that key.
  void add(Value key, Value value);

  // Removes the entry of `key` and returns its value.
  std::optional<Value> take(const char* key);
  // Removes all entries and returns them in the order of their slots.
  std::vector<Entry> takeAll();

 private:
  struct Place {
    Slot* slot;
    bool is_new;
  };
  Place placeOf(Value key);
  void makeRoom();
  Entry takeSlot(Slot& slot) noexcept;

  RawTable* table_ = nullptr;
};

} // namespace plain_build

#endif
