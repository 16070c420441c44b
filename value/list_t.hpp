// A sequence of values, as the host lays it out:
//
//   0 count (8)   8 capacity (8)   16 elements (16 each)
//
// A null pointer is a valid empty list. The host makes and grows lists; this layer reads and moves
// them and, through the value that holds them, copies them.
//
// A new iterator remembers the block and its count. Advancing or comparing it after the list lost
// its block or changed its count throws "Iterator invalidated by modifying list".
#ifndef VLT_VALUE_LIST_T_HPP
#define VLT_VALUE_LIST_T_HPP

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <type_traits>
#include <utility>

#include "host/storage.h"
#include "value/owned_block.hpp"

namespace com::velanto::connectivity {

class data_t;

// The elements of a list block; none for a null one.
[[nodiscard]] std::span<const data_t> elements_of(const vlt_underlying_vector_t* block) noexcept;

class list_t : public owned_block_t<vlt_underlying_vector_t, vlt_free_vector> {
 public:
  template <bool IS_CONST>
  class _iterator;
  using iterator = _iterator<false>;
  using const_iterator = _iterator<true>;

  using owned_block_t::owned_block_t;

  // Number of elements; 0 for a null block.
  [[nodiscard]] std::size_t size() const noexcept {
    return block_ == nullptr ? 0 : static_cast<std::size_t>(block_->count);
  }
  // The element at `index`, which must be below size().
  [[nodiscard]] data_t& operator[](std::size_t index) noexcept;
  [[nodiscard]] const data_t& operator[](std::size_t index) const noexcept;

  [[nodiscard]] iterator begin() noexcept;
  [[nodiscard]] iterator end() noexcept;
  [[nodiscard]] const_iterator begin() const noexcept;
  [[nodiscard]] const_iterator end() const noexcept;

  // Same count and pairwise equal elements, in order. Throws std::bad_alloc.
  bool operator==(const list_t& other) const;

  // The block, still owned by the list; null when there is none.
  [[nodiscard]] const vlt_underlying_vector_t* block() const noexcept { return block_; }
};

template <bool IS_CONST>
class list_t::_iterator {
 public:
  using iterator_category = std::forward_iterator_tag;
  using value_type = data_t;
  using difference_type = std::ptrdiff_t;
  using reference = std::conditional_t<IS_CONST, const data_t&, data_t&>;
  using pointer = std::conditional_t<IS_CONST, const data_t*, data_t*>;
  using list_pointer = std::conditional_t<IS_CONST, const list_t*, list_t*>;

  // Of no list: equals another one like it; comparing it with an iterator of a list throws. Do not
  // dereference it.
  _iterator() noexcept = default;
  // Points at element `index` of `list`, which must outlive the iterator.
  _iterator(list_pointer list, std::size_t index) noexcept;

  reference operator*() const noexcept;
  // Throws after a change of the list.
  _iterator& operator++();
  bool operator==(const _iterator& other) const;

 private:
  void check() const;

  list_pointer list_ = nullptr;
  const vlt_underlying_vector_t* block_ = nullptr;
  std::size_t count_ = 0;
  std::size_t index_ = 0;
};

extern template class list_t::_iterator<false>;
extern template class list_t::_iterator<true>;

static_assert(sizeof(list_t) == sizeof(void*), "a value is viewed in place as its list");

} // namespace com::velanto::connectivity

#endif
