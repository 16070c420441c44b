#include "value/get_visitor.hpp"

#include <cstdio>
#include <stdexcept>
#include <string>

namespace com::velanto::connectivity {

void report_wrong_kind(const std::type_info& requested, std::uint32_t requested_tag,
                       std::uint32_t actual_tag) {
  const char* const type = requested.name();
  std::fprintf(stderr, "GetVisitor<%s>.operator()(%s)\n", type, type);
  throw std::runtime_error(std::string("Incorrect type in get (you asked for ") +
                           kind_name(requested_tag) + " but it's actually " +
                           kind_name(actual_tag) + ")");
}

void report_get_from_empty() { throw std::runtime_error("Get from empty"); }

} // namespace com::velanto::connectivity
