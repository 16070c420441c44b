// Copies of constants that a notification brings along. A field that is taken out of the payload
// leaves its key behind, and the event mostly has a field of the same name: its key is then the one
// that came, instead of that one being freed and another one made. The same goes for texts that turned
// out to be those of an enumeration.
#ifndef VLT_CODEC_SPARE_COPIES_HPP
#define VLT_CODEC_SPARE_COPIES_HPP

#include <bit>
#include <cstdint>
#include <utility>

#include "codec/constant.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

class SpareCopies {
 public:
  SpareCopies() noexcept = default;
  SpareCopies(SpareCopies&& other) noexcept { takeAll(other); }
  SpareCopies& operator=(SpareCopies&& other) noexcept {
    if (this != &other) {
      freeAll();
      takeAll(other);
    }
    return *this;
  }
  ~SpareCopies() { freeAll(); }

  // Keeps `copy`, a string of the constant's text; one that is borrowed, or one too many, is freed.
  void keep(const constant_t& constant, data_t&& copy) noexcept {
    if (copy.type_tag() != VLT_TAG_STRING || isKept(constant)) {
      const data_t freed = std::move(copy);
      return;
    }
    new (&slots_[constant.number()].copy) data_t(std::move(copy));
    kept_ |= bitOf(constant);
  }

  // The copy that was kept, or else a new one. Throws std::bad_alloc.
  [[nodiscard]] data_t take(const constant_t& constant) {
    if (!isKept(constant)) return data_t(constant);
    kept_ &= ~bitOf(constant);
    return std::move(slots_[constant.number()].copy);
  }

  // The entry of `value` under such a copy.
  [[nodiscard]] map_entry_t entry(const constant_t& constant, data_t&& value) {
    return {constant.hash(), take(constant), std::move(value)};
  }

 private:
  // Left as it is until something is kept in it: there are many and few are used.
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

  void freeAll() noexcept {
    for (; kept_ != 0; kept_ &= kept_ - 1) slots_[std::countr_zero(kept_)].copy.~data_t();
  }
  // There must be none here.
  void takeAll(SpareCopies& other) noexcept {
    for (; other.kept_ != 0; other.kept_ &= other.kept_ - 1) {
      const int number = std::countr_zero(other.kept_);
      new (&slots_[number].copy) data_t(std::move(other.slots_[number].copy));
      kept_ |= std::uint64_t{1} << number;
    }
  }

  std::uint64_t kept_ = 0; // the slots in use, a bit each
  slot_t slots_[constant_t::MOST];
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
