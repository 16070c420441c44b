// Frees values with everything that they own.
#ifndef VLT_STANDIN_FREE_HPP
#define VLT_STANDIN_FREE_HPP

#include "host/types.h"

namespace standin {

// Frees what `value` owns; `value` itself is left dangling. Needs no memory and a fixed amount of
// stack, however deep the value nests.
void freeValue(const vlt_underlying_data_t& value) noexcept;

} // namespace standin

#endif
