#include "value/get_visitor.hpp"

#include <cstdio>
#include <stdexcept>
#include <string>

namespace com::velanto::connectivity {

std::runtime_error report_mismatch_of(const data_t& value, const std::type_info& requested,
                                      std::uint32_t requested_tag) {
  const std::uint32_t actual_tag = value.type_tag();
  if (actual_tag == VLT_TAG_EMPTY || actual_tag > VLT_TAG_BORROWED_STRING) {
    return std::runtime_error("Get from empty");
  }
  const char* const type = requested.name();
  std::fprintf(stderr, "GetVisitor<%s>.operator()(%s)\n", type, type);
  return std::runtime_error(std::string("Incorrect type in get (you asked for ") +
                            kind_name(requested_tag) + " but it's actually " +
                            kind_name(actual_tag) + ")");
}

} // namespace com::velanto::connectivity
