// Whether two lists or two maps hold the same, however deeply they nest: senders nest as they like,
// in keys too, so nothing here recurses. The comparison of an outer pair waits on the heap while
// that of an inner pair is under way; containers without containers in them cost no memory.
#ifndef VLT_VALUE_NESTED_EQUALITY_HPP
#define VLT_VALUE_NESTED_EQUALITY_HPP

#include "value/data_t.hpp"

namespace com::velanto::connectivity {

// Same count and pairwise equal elements, in order. Throws std::bad_alloc.
[[nodiscard]] bool are_equal(const list_t& left, const list_t& right);

// Same entries, in any order, with any capacity and history. Throws std::bad_alloc.
[[nodiscard]] bool are_equal(const map_t& left, const map_t& right);

} // namespace com::velanto::connectivity

#endif
