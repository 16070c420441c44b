// Makes lists with the host's own functions, whatever library that is: a list of empty values is laid
// out here and copied by vlt_copy_data; the copy, which is the host's, is then filled in place.
#ifndef VLT_NDJSON_MAKE_LIST_HPP
#define VLT_NDJSON_MAKE_LIST_HPP

#include <vector>

#include "value/data_t.hpp"

namespace com::velanto::connectivity {

// A list of the host with `elements` in it, which are moved, never copied. Throws std::bad_alloc;
// the elements are then untouched.
[[nodiscard]] list_t makeList(std::vector<data_t>&& elements);

} // namespace com::velanto::connectivity

#endif
