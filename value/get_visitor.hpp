// Typed access to a value: GetVisitor<T> yields the content when it is a T and null otherwise.
// data_t::get_if<T>() is this visitor applied, data_t::get<T>() throws for a null.
#ifndef VLT_VALUE_GET_VISITOR_HPP
#define VLT_VALUE_GET_VISITOR_HPP

#include <stdexcept>
#include <type_traits>
#include <typeinfo>

#include "value/data_t.hpp"

namespace com::velanto::connectivity {

// The tag of the kind with content T; of the two string kinds, the owned one.
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

// The error of a typed get on `value`: "Get from empty", or the "Incorrect type in get" one. For
// the latter it writes a line "GetVisitor<T>.operator()(T)" to standard error, with the run-time
// name of the type asked for; no setting suppresses it.
[[nodiscard]] std::runtime_error report_mismatch_of(const data_t& value,
                                                    const std::type_info& requested,
                                                    std::uint32_t requested_tag);

template <class T> // T may be const: a get on a constant value
struct GetVisitor {
  T* operator()(T& content) const noexcept { return &content; }
  template <class Other>
  T* operator()(Other&) const noexcept {
    return nullptr;
  }
};

template <class T>
T* data_t::get_if() noexcept {
  return apply_visitor(GetVisitor<T>(), []() -> T* { return nullptr; });
}

template <class T>
const T* data_t::get_if() const noexcept {
  return apply_visitor(GetVisitor<const T>(), []() -> const T* { return nullptr; });
}

template <class T>
std::runtime_error data_t::report_mismatch() const {
  return report_mismatch_of(*this, typeid(T), TAG_OF<T>);
}

template <class T>
T& data_t::get() {
  if (T* const content = get_if<T>()) return *content;
  throw report_mismatch<T>();
}

template <class T>
const T& data_t::get() const {
  if (const T* const content = get_if<T>()) return *content;
  throw report_mismatch<T>();
}

} // namespace com::velanto::connectivity

#endif
