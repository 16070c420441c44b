// The display text of values. Nothing parses it; it is stable so that logs and tests can compare
// it.
//
//   empty            null
//   boolean          true, false
//   double           the shortest form that reads back as the same number, "5.0" when whole
//   integer          decimal digits
//   decimal          decimal(0x0123456789abcdef), the 8 bytes as one number
//   string           in quotes, with the escapes \" \\ \n \r \t, and \u00xx for other control
//                    characters. A null text is "".
//   list             [a, b]
//   map              {key: value, key: value} in slot order, so equal maps may differ here.
//                    Sorting would cost memory and time.
//   buffer           buffer(12 bytes)
//   custom           custom
//   unknown          unknown(11), with the tag
#ifndef VLT_STANDIN_RENDER_HPP
#define VLT_STANDIN_RENDER_HPP

#include "host/types.h"

namespace standin {

// A counted string block, owned by the caller. Null: exhausted. Uses a fixed amount of stack,
// however deep the value nests.
char* renderValue(const vlt_underlying_data_t& value) noexcept;

} // namespace standin

#endif
