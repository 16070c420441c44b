// Whether two values that hold no others are the same, for comparisons of whole trees. Stricter than
// the equality of values: the bits of numbers count, so that 0.0 and -0.0 differ, and so do the
// labels of custom objects.
#ifndef VLT_TOOLS_CHECK_SAME_CONTENT_HPP
#define VLT_TOOLS_CHECK_SAME_CONTENT_HPP

#include "value/data_t.hpp"

namespace com::velanto::connectivity::tools::check {

// A number is the same as another of the same bits. NaN comes in many bits: a plug-in that moves
// one keeps them, but JSON cannot say which of them it means.
enum class NotANumber { sameBits, anyBits };

// Both are of one kind, which is neither list nor map. A null string equals a null string only.
[[nodiscard]] bool sameContent(const data_t& left, const data_t& right, NotANumber rule);

} // namespace com::velanto::connectivity::tools::check

#endif
