// Makes lists with the functions of any host library. vlt_copy_data copies a list of empty values
// made here; the copy, which is the host's, then gets its elements in place.
#ifndef VLT_NDJSON_MAKE_LIST_HPP
#define VLT_NDJSON_MAKE_LIST_HPP

#include <vector>

#include "value/data_t.hpp"

namespace com::velanto::connectivity {

// A list of the host with `elements`, moved and never copied. Throws std::bad_alloc; the elements
// then stay as they are.
[[nodiscard]] list_t makeList(std::vector<data_t>&& elements);

} // namespace com::velanto::connectivity

#endif
