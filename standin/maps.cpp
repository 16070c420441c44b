// Map tables as the host makes and resizes them. Lookup, insertion and erasure are the plug-in's
// own. Both sides share only the rule for the place of an entry:
//
//   home slot   hash mod capacity, unsigned.
//   probing     home, home + 1, ..., until a free slot. After the last slot comes slot 0.
#include "standin/accounting.hpp"
#include "standin/blocks.hpp"
#include "standin/interface.hpp"
#include "standin/layout.hpp"

namespace standin {

namespace {

// Counts the entries instead of trusting the head. With a count that is too low, place() would
// probe a full table for ever.
int64_t countLive(const vlt_underlying_map_table_t& table) noexcept {
  int64_t live = 0;
  for (int64_t i = 0; i < table.capacity; ++i) live += isLive(slotsOf(&table)[i]) ? 1 : 0;
  return live;
}

// The table has a free slot and no deleted ones.
void place(vlt_underlying_map_table_t& table, const slot_t& entry) noexcept {
  const auto capacity = static_cast<uint64_t>(table.capacity);
  slot_t* slots = slotsOf(&table);
  uint64_t i = entry.hash % capacity;
  while (isLive(slots[i])) i = i + 1 == capacity ? 0 : i + 1;
  slots[i] = entry;
}

// Null: exhausted, or fewer slots than entries; the old table stays as it is.
vlt_underlying_map_table_t* rebuild(vlt_underlying_map_table_t& old, int64_t capacity) noexcept {
  const int64_t live = countLive(old);
  if (capacity < live) return nullptr;
  vlt_underlying_map_table_t* table = makeMap(capacity);
  if (table == nullptr) return nullptr;
  for (int64_t i = 0; i < old.capacity; ++i) {
    if (isLive(slotsOf(&old)[i])) place(*table, slotsOf(&old)[i]);
  }
  table->live = live;
  release(STANDIN_BLOCK_MAP, &old); // the entries live on in the new table
  return table;
}

} // namespace

} // namespace standin

using namespace standin;

vlt_underlying_map_table_t* vlt_allocate_map(int64_t capacity) {
  countCall(STANDIN_ALLOCATE_MAP);
  return makeMap(capacity);
}

vlt_underlying_map_table_t* vlt_reallocate_map(vlt_underlying_map_table_t* table,
                                               int64_t new_capacity) {
  countCall(STANDIN_REALLOCATE_MAP);
  return table == nullptr ? makeMap(new_capacity) : rebuild(*table, new_capacity);
}
