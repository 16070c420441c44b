#include "tools/check/same_content.hpp"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "standin/standin.h"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

bool sameText(const char* left, const char* right) {
  if (left == nullptr || right == nullptr) return left == right;
  return std::strcmp(left, right) == 0;
}

bool sameBuffer(const buffer_t& left, const buffer_t& right) {
  if (left.size() != right.size()) return false;
  return left.size() == 0 || std::memcmp(left.data(), right.data(), left.size()) == 0;
}

// The 8 bytes of the content, of any meaning.
std::uint64_t bitsOf(const data_t& value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value.underlying()->value, sizeof bits);
  return bits;
}

bool isNotANumber(const data_t& value) {
  return value.type_tag() == VLT_TAG_DOUBLE && std::isnan(value.get<double>());
}

} // namespace

bool sameContent(const data_t& left, const data_t& right, NotANumber rule) {
  switch (left.type_tag()) {
    case VLT_TAG_EMPTY:
      return true;
    case VLT_TAG_BOOLEAN:
      return left.get<bool>() == right.get<bool>();
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      return sameText(left.get<const char*>(), right.get<const char*>());
    case VLT_TAG_BUFFER:
      return sameBuffer(left.get<buffer_t>(), right.get<buffer_t>());
    case VLT_TAG_CUSTOM:
      return standin_custom_label(left.get<vlt_underlying_custom_t>()) ==
             standin_custom_label(right.get<vlt_underlying_custom_t>());
    default:
      if (rule == NotANumber::anyBits && isNotANumber(left)) return isNotANumber(right);
      return bitsOf(left) == bitsOf(right);
  }
}

} // namespace com::velanto::connectivity::tools::check
