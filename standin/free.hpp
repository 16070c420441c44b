// Frees values with everything that they own.
#ifndef VLT_STANDIN_FREE_HPP
#define VLT_STANDIN_FREE_HPP

#include "host/types.h"

namespace standin {

// Frees the blocks that `value` owns and leaves it dangling. Needs no memory and a fixed amount of
// stack, however deep the value nests.
void freeValue(const vlt_underlying_data_t& value) noexcept;

} // namespace standin

#endif
