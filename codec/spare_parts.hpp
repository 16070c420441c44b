// Parts of a notification that its event can use, instead of freeing them and making the same
// again:
//
//   copies of constants   a field taken out of the payload leaves its key, and the event mostly has a
//                         field of that name; a string may be a word of an enumeration
//   tables                of maps that a conversion empties, if they have the capacity of new tables
#ifndef VLT_CODEC_SPARE_PARTS_HPP
#define VLT_CODEC_SPARE_PARTS_HPP

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "codec/vocabulary.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

class SpareParts {
 public:
  SpareParts() noexcept = default;
  SpareParts(const SpareParts&) = delete;
  SpareParts& operator=(const SpareParts&) = delete;
  ~SpareParts() {
    for (; kept_ != 0; kept_ &= kept_ - 1) slots_[std::countr_zero(kept_)].copy.~data_t();
  }

  // Keeps `copy`, a string equal to the constant, unless it is borrowed or there is one already;
  // leaves `copy` empty in any case.
  void keep(const constant_t& constant, data_t&& copy) noexcept {
    if (copy.type_tag() != VLT_TAG_STRING || isKept(constant)) {
      const data_t freed = std::move(copy);
      return;
    }
    new (&slots_[constant.number()].copy) data_t(std::move(copy));
    kept_ |= bitOf(constant);
  }

  // The kept copy, or else a new one. Throws std::bad_alloc.
  [[nodiscard]] data_t take(const constant_t& constant) {
    if (!isKept(constant)) return constant.copy();
    kept_ &= ~bitOf(constant);
    return std::move(slots_[constant.number()].copy);
  }

  // Keeps the table of `cleared`, a map as map_t::clear leaves it, or frees it.
  void keepMap(map_t&& cleared) noexcept {
    map_t table = std::move(cleared);
    if (table.capacity() != table_rules::FIRST_CAPACITY || kept_tables_ == tables_.size()) return;
    tables_[kept_tables_++] = std::move(table);
  }

  // A map without entries, for one that is about to get some: with a table, if there is one.
  [[nodiscard]] map_t takeMap() noexcept {
    return kept_tables_ == 0 ? map_t() : std::move(tables_[--kept_tables_]);
  }

 private:
  // Uninitialised until it keeps something: there are many and few are used.
  union slot_t {
    slot_t() noexcept {} // NOLINT(modernize-use-equals-default): a defaulted one would be deleted
    slot_t(const slot_t&) = delete;
    slot_t& operator=(const slot_t&) = delete;
    ~slot_t() {} // NOLINT(modernize-use-equals-default): for the same reason
    data_t copy;
  };

  [[nodiscard]] static std::uint64_t bitOf(const constant_t& constant) noexcept {
    return std::uint64_t{1} << constant.number();
  }
  [[nodiscard]] bool isKept(const constant_t& constant) const noexcept {
    return (kept_ & bitOf(constant)) != 0;
  }

  std::uint64_t kept_ = 0; // the slots in use, a bit each
  slot_t slots_[constant_t::MAX_COUNT];
  std::array<map_t, 4> tables_;
  std::size_t kept_tables_ = 0; // the first ones
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
