#include "value/convert_to.hpp"

#include <array>
#include <cstdio>
#include <stdexcept>

namespace com::velanto::connectivity {

namespace convert_to_details {

std::string _get_or_convert<std::string>::operator()(const bool& content) const {
  return is_true(content) ? "true" : "false";
}

std::string _get_or_convert<std::string>::operator()(const double& content) const {
  std::array<char, 50> text{};
  std::snprintf(text.data(), text.size(), "%g", content);
  return text.data();
}

std::string _get_or_convert<std::string>::operator()(const std::int64_t& content) const {
  std::array<char, 25> text{};
  std::snprintf(text.data(), text.size(), "%lld", static_cast<long long>(content));
  return text.data();
}

std::string _get_or_convert<std::string>::operator()(const char* const& content) const {
  return text_or_empty(content);
}

void _get_or_convert<std::string>::refuse() const {
  throw std::runtime_error(std::string("Trying to parse from incorrect type (actually ") + kind_ +
                           ")");
}

} // namespace convert_to_details

template <>
std::string convert_to<std::string>(const data_t& value) {
  if (value.empty()) throw std::runtime_error("Trying to parse from empty");
  const convert_to_details::_get_or_convert<std::string> visitor(kind_name(value.type_tag()));
  return value.apply_visitor(visitor, [&]() -> std::string { visitor.refuse(); });
}

} // namespace com::velanto::connectivity
