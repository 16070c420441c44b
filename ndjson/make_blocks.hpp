// Makes lists and buffers with the functions of any host library. vlt_copy_data copies a block made
// here; the copy is the host's.
#ifndef VLT_NDJSON_MAKE_BLOCKS_HPP
#define VLT_NDJSON_MAKE_BLOCKS_HPP

#include <string_view>
#include <vector>

#include "value/data_t.hpp"

namespace com::velanto::connectivity {

// A list of the host with `elements`, moved and never copied. Throws std::bad_alloc; the elements
// then stay as they are.
[[nodiscard]] list_t makeList(std::vector<data_t>&& elements);

// A buffer of the host with these bytes, at most 4 GiB. Throws std::bad_alloc.
[[nodiscard]] buffer_t makeBuffer(std::string_view bytes);

} // namespace com::velanto::connectivity

#endif
