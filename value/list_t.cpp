#include "value/list_t.hpp"

#include "value/data_t.hpp"
#include "value/iterator_checks.hpp"
#include "value/nested_equality.hpp"

namespace com::velanto::connectivity {

std::span<const data_t> elements_of(const vlt_underlying_vector_t* block) noexcept {
  if (block == nullptr) return {};
  return {reinterpret_cast<const data_t*>(block + 1), static_cast<std::size_t>(block->count)};
}

const data_t& list_t::operator[](std::size_t index) const noexcept {
  return elements_of(block_)[index];
}
data_t& list_t::operator[](std::size_t index) noexcept {
  return const_cast<data_t&>(std::as_const(*this)[index]);
}

list_t::iterator list_t::begin() noexcept { return {this, 0}; }
list_t::iterator list_t::end() noexcept { return {this, size()}; }
list_t::const_iterator list_t::begin() const noexcept { return {this, 0}; }
list_t::const_iterator list_t::end() const noexcept { return {this, size()}; }

bool list_t::operator==(const list_t& other) const { return are_equal(*this, other); }

template <bool IS_CONST>
list_t::_iterator<IS_CONST>::_iterator(list_pointer list, std::size_t index) noexcept
    : list_(list), block_(list->block_), count_(list->size()), index_(index) {}

template <bool IS_CONST>
void list_t::_iterator<IS_CONST>::check() const {
  const bool lost_block = list_ == nullptr || (block_ != nullptr && list_->block_ == nullptr);
  if (lost_block || list_->size() != count_) {
    iterator_checks::fail(iterator_checks::LIST_MODIFIED);
  }
}

template <bool IS_CONST>
auto list_t::_iterator<IS_CONST>::operator*() const noexcept -> reference {
  return (*list_)[index_];
}

template <bool IS_CONST>
auto list_t::_iterator<IS_CONST>::operator++() -> _iterator& {
  check();
  ++index_;
  return *this;
}

template <bool IS_CONST>
bool list_t::_iterator<IS_CONST>::operator==(const _iterator& other) const {
  if (list_ != nullptr || other.list_ != nullptr) {
    check();
    other.check();
  }
  return index_ == other.index_;
}

template class list_t::_iterator<false>;
template class list_t::_iterator<true>;

} // namespace com::velanto::connectivity
