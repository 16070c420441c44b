// The slots that plain insertion visits, by the rules of the tables alone and on plain numbers. Any
// implementation that puts each entry where the host looks for it has to pass them.
//
//   first insertion   8 slots
//   before any other  when capacity x 0.75 < entries: 2 x entries + 2 slots, the entries moved by
//                     the host
//   insertion         from hash mod capacity upwards to the first free slot
#ifndef VLT_TESTS_COST_FORCED_VISITS_HPP
#define VLT_TESTS_COST_FORCED_VISITS_HPP

#include <cstdint>
#include <vector>

#include "value/map_slot.hpp"
#include "value/table_rules.hpp"

namespace com::velanto::connectivity::test {

constexpr std::int64_t grownFrom(std::int64_t capacity) { return 2 * (3 * capacity / 4 + 1) + 2; }

// The capacity at which a table that grows by insertions alone has at least that many slots.
constexpr std::int64_t capacityFor(std::int64_t slots) {
  std::int64_t capacity = table_rules::FIRST_CAPACITY;
  while (capacity < slots) capacity = grownFrom(capacity);
  return capacity;
}

// The hashes of a table's entries, in the order of slots.
inline std::vector<std::uint64_t> slotHashes(const map_t& map) {
  const auto* const slots = reinterpret_cast<const map_slot_t*>(map.table() + 1);
  std::vector<std::uint64_t> hashes;
  for (std::int64_t i = 0; i < map.capacity(); ++i) {
    if (slots[i].is_live()) hashes.push_back(slots[i].hash);
  }
  return hashes;
}

class VisitCounter {
 public:
  void insert(std::uint64_t hash) {
    visits_ += place(slots_, hash);
    ++live_;
    if (4 * live_ > 3 * slots_.size()) grow();
  }
  [[nodiscard]] std::uint64_t visits() const { return visits_; }

 private:
  struct slot_t {
    bool taken = false;
    std::uint64_t hash = 0;
  };
  using slots_t = std::vector<slot_t>;

  static std::uint64_t place(slots_t& slots, std::uint64_t hash) {
    std::uint64_t visits = 1;
    std::size_t at = hash % slots.size();
    for (; slots[at].taken; ++visits) at = at + 1 == slots.size() ? 0 : at + 1;
    slots[at] = {true, hash};
    return visits;
  }
  // Done at the last moment by a real table, here already when it has become due: the one
  // insertion in between is the same.
  void grow() {
    slots_t grown(2 * live_ + 2);
    for (const slot_t& slot : slots_) {
      if (slot.taken) place(grown, slot.hash);
    }
    slots_ = std::move(grown);
  }

  slots_t slots_ = slots_t(table_rules::FIRST_CAPACITY);
  std::size_t live_ = 0;
  std::uint64_t visits_ = 0;
};

// Slots visited by inserting entries of these hashes in this order.
inline std::uint64_t forcedVisits(const std::vector<std::uint64_t>& hashes) {
  VisitCounter counter;
  for (const std::uint64_t hash : hashes) counter.insert(hash);
  return counter.visits();
}

} // namespace com::velanto::connectivity::test

#endif
