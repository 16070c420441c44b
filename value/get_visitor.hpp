// Typed access to a value: GetVisitor<T> yields the content when it is a T and reports a mismatch
// otherwise. data_t::get<T>() is this visitor applied.
#ifndef VLT_VALUE_GET_VISITOR_HPP
#define VLT_VALUE_GET_VISITOR_HPP

#include <type_traits>
#include <typeinfo>

#include "value/data_t.hpp"

namespace com::velanto::connectivity {

// The tag of the kind whose content is a T; of the two string kinds, the owned one.
template <class T>
inline constexpr std::uint32_t TAG_OF = VLT_TAG_EMPTY;
template <>
inline constexpr std::uint32_t TAG_OF<bool> = VLT_TAG_BOOLEAN;
template <>
inline constexpr std::uint32_t TAG_OF<double> = VLT_TAG_DOUBLE;
template <>
inline constexpr std::uint32_t TAG_OF<std::int64_t> = VLT_TAG_INTEGER;
template <>
inline constexpr std::uint32_t TAG_OF<vlt_underlying_decimal_t> = VLT_TAG_DECIMAL;
template <>
inline constexpr std::uint32_t TAG_OF<const char*> = VLT_TAG_STRING;
template <>
inline constexpr std::uint32_t TAG_OF<list_t> = VLT_TAG_LIST;
template <>
inline constexpr std::uint32_t TAG_OF<map_t> = VLT_TAG_MAP;
template <>
inline constexpr std::uint32_t TAG_OF<buffer_t> = VLT_TAG_BUFFER;
template <>
inline constexpr std::uint32_t TAG_OF<vlt_underlying_custom_t> = VLT_TAG_CUSTOM;

// Writes "GetVisitor<T>.operator()(T)" to standard error, both with the run-time name of the type
// asked for; no setting suppresses it. Then throws the "Incorrect type in get" error.
[[noreturn]] void report_wrong_kind(const std::type_info& requested, std::uint32_t requested_tag,
                                    std::uint32_t actual_tag);
[[noreturn]] void report_get_from_empty();

template <class T> // T may be const: a get on a constant value
struct GetVisitor {
  T& operator()(T& content) const noexcept { return content; }
  template <class Other>
  T& operator()(Other&) const {
    report_wrong_kind(typeid(T), TAG_OF<std::remove_const_t<T>>,
                      TAG_OF<std::remove_const_t<Other>>);
  }
};

template <class T>
T& data_t::get() {
  return apply_visitor(GetVisitor<T>(), []() -> T& { report_get_from_empty(); });
}

template <class T>
const T& data_t::get() const {
  return apply_visitor(GetVisitor<const T>(), []() -> const T& { report_get_from_empty(); });
}

} // namespace com::velanto::connectivity

#endif
