// One entry on its way between tables, with the hash under which tables store it, so that it needs
// no new hash. An empty key is no entry.
#ifndef VLT_VALUE_MAP_ENTRY_HPP
#define VLT_VALUE_MAP_ENTRY_HPP

#include <cstdint>

#include "value/data_t.hpp"

namespace com::velanto::connectivity {

struct map_entry_t {
  std::uint64_t hash = 0;
  data_t key;
  data_t value;
};

} // namespace com::velanto::connectivity

#endif
