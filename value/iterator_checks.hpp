// The reaction of a container to a wrong use of one of its iterators.
//
// The fault is thrown unless TV_SKIP_DATA_T_ITERATOR_CHECKS is set, to anything, in the environment
// at that moment: a person in the field can switch the checks off in a running installation without
// a new build.
#ifndef VLT_VALUE_ITERATOR_CHECKS_HPP
#define VLT_VALUE_ITERATOR_CHECKS_HPP

namespace com::velanto::connectivity::iterator_checks {

inline constexpr const char* MAP_MODIFIED = "Iterator invalidated by modifying map";
inline constexpr const char* LIST_MODIFIED = "Iterator invalidated by modifying list";
inline constexpr const char* DIFFERENT_MAPS = "Invalid comparison of iterators into different maps";

// Throws std::runtime_error(text) unless the checks are off; then the operation goes on.
void fail(const char* text);

} // namespace com::velanto::connectivity::iterator_checks

#endif
