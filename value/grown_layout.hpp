// Where entries come to lie in a table that grows while they are inserted one after the other,
// found without a table, so that it need be made only once, in its last size. The sizes on the way
// matter: each time a table grows, its entries are placed anew in the order of its slots.
//
//   entries   0 .. count-1         as they lie in the tables that they come from, in the order of
//                                  insertion; still owned there
//   slots     0 .. capacity-1      the number of the entry that lies there, or FREE
//
// Known are the sizes that a fresh table grows through. They are so few that the placing can be
// compiled for each, with the size as a constant.
#ifndef VLT_VALUE_GROWN_LAYOUT_HPP
#define VLT_VALUE_GROWN_LAYOUT_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "value/map_slot.hpp"

namespace com::velanto::connectivity {

class GrownLayout {
 public:
  // More entries are not laid out: so many fill the table of the largest size.
  static constexpr std::size_t MOST = 55;

  // Whether a fresh table grows through this size.
  [[nodiscard]] static bool knows(std::int64_t capacity) noexcept;

  // A table of a known size, without entries.
  explicit GrownLayout(std::int64_t capacity) noexcept;

  // The next entry lies in `slot` of that table already. For all of those, before any other.
  void lie(const map_entry_t& entry, std::int64_t slot) noexcept {
    slots_[0][static_cast<std::size_t>(slot)] = static_cast<number_t>(lying_++);
    follow(entry);
  }
  // The next entry is to be inserted.
  void follow(const map_entry_t& entry) noexcept {
    std::memcpy(&entries_[count_++], static_cast<const void*>(&entry), sizeof entry);
  }

  // Inserts what follows, growing as often as that takes, and once more if that is what the
  // insertion of an entry of the hash `next` would begin with. False when an entry meets another of
  // its hash, which may be one of the same key, or the table outgrows the known sizes, as it does at
  // once when more lie in it than insertion would leave there; the layout means nothing then.
  [[nodiscard]] bool insert_all(std::uint64_t next) noexcept;

  [[nodiscard]] std::int64_t count() const noexcept { return static_cast<std::int64_t>(count_); }
  // The size of the table in the end.
  [[nodiscard]] std::int64_t capacity() const noexcept {
    return static_cast<std::int64_t>(capacity_);
  }
  // Copies the entries into the slots of such a table, which are free. What they own is owned there
  // from now on: where they lay before they must be forgotten.
  void fill(map_slot_t* slots) const noexcept;

 private:
  // Not a character: those could be part of anything, so that all else would be read again after
  // each that is written.
  using number_t = std::uint16_t;
  using slots_t = std::array<number_t, 72>;
  static constexpr number_t FREE = 0xFFFF;

  template <std::size_t CAPACITY>
  [[nodiscard]] bool insert_from(std::size_t entry, slots_t& slots, slots_t& spare,
                                 std::uint64_t next) noexcept;
  template <std::size_t CAPACITY>
  [[nodiscard]] std::size_t slot_for(std::uint64_t hash, const slots_t& slots,
                                     bool& met) const noexcept;

  std::size_t capacity_;
  std::size_t lying_ = 0;
  std::size_t count_ = 0;
  std::size_t last_ = 0; // which slots are those in the end
  std::array<slots_t, 2> slots_;
  std::array<vlt_underlying_map_table_entry_t, MOST> entries_; // the first `count_` mean something
};

} // namespace com::velanto::connectivity

#endif
