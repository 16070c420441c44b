// The host calls of a conversion and nothing else. For one notification: the strings to free, the
// tables to make and grow, and their contents afterwards. Making the plan finds out hashes, slots,
// kinds and times. So carrying it out costs the calls, the moves between slots, and next to nothing
// else.
//
// Numbers in a plan:
//
//   input table   0 payload   1 metadata   2… inner maps that lose entries: source, fragments,
//                 series, position. Each comes after the map that holds it.
//   text          one of the copied constants: keys, event type, channel, …
//   output table  in the order of building. A table comes after the tables that it holds. The last
//                 two are the event's metadata and its payload.
#ifndef VLT_BENCH_FLOOR_PLAN_HPP
#define VLT_BENCH_FLOOR_PLAN_HPP

#include <cstdint>
#include <vector>

#include "host/types.h"

namespace com::velanto::connectivity::bench::floor {

// The source of a key or a value of an output entry. It has 8 bytes only: plans of the largest inputs
// have hundreds of thousands, and reading them must not dominate the measurement.
class origin_t {
 public:
  enum class way_t : std::uint32_t {
    MOVED,    // the key, or the value, of a slot of an input table
    COPIED,   // a deep copy of a constant string
    CONSTANT, // 16 bytes that own nothing: a time, a count
    TABLE,    // an output table
  };

  origin_t() noexcept = default;
  origin_t(way_t way, std::uint32_t index, std::uint32_t slot = 0) noexcept
      : way_and_index_((static_cast<std::uint32_t>(way) << INDEX_BITS) | index), slot_(slot) {}

  [[nodiscard]] way_t way() const noexcept {
    return static_cast<way_t>(way_and_index_ >> INDEX_BITS);
  }
  // The number of the input table, the string, the constant or the output table.
  [[nodiscard]] std::uint32_t index() const noexcept {
    return way_and_index_ & ((1u << INDEX_BITS) - 1);
  }
  [[nodiscard]] std::uint32_t slot() const noexcept { return slot_; }

 private:
  static constexpr unsigned INDEX_BITS = 28;
  std::uint32_t way_and_index_ = 0;
  std::uint32_t slot_ = 0;
};

struct entry_t {
  std::uint64_t hash;
  std::uint32_t slot; // at the time of its insertion
  origin_t key;
  origin_t value;
};

struct growth_t {
  std::uint32_t before; // the number of the entry whose insertion it precedes, within the table
  std::int64_t capacity;
};

struct output_table_t {
  std::int64_t capacity; // when it is made
  std::uint32_t entries;
  std::uint32_t growths;
};

// A string of an input table to free: its key or its value.
struct freed_t {
  std::uint32_t table;
  std::uint32_t slot;
  bool is_key;
};

// An input table that loses entries, and the slot of another that holds it.
struct opened_t {
  std::uint32_t table;
  std::uint32_t slot;
};

// A slot of an input table that loses its entry alone, which leaves a deleted slot.
struct erased_t {
  std::uint32_t table;
  std::uint32_t slot;
};

struct plan_t {
  bool passes = false; // nothing happens at all
  bool has_id = false; // a string: the stand-by message has a map with a copy of it
  std::uint32_t id_slot = 0;
  std::vector<opened_t> opened; // input tables 2 and up
  std::vector<freed_t> freed;   // consumed strings
  std::vector<erased_t> erased;
  std::vector<std::uint32_t> copied_in_vain; // strings: copied and freed again
  std::vector<output_table_t> outputs;
  std::vector<entry_t> entries;               // of all outputs, one after the other
  std::vector<growth_t> growths;              // of all outputs
  std::vector<std::uint32_t> freed_tables;    // input tables, with their remaining entries
  std::vector<std::int64_t> transient_tables; // made at this capacity and freed again
  std::vector<vlt_underlying_data_t> constants;
};

} // namespace com::velanto::connectivity::bench::floor

#endif
