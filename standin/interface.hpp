// The functions that the library exports, declared visible. All other symbols are hidden, and a
// definition takes the visibility of its first declaration. Sources that define exported functions
// include this header and no header of host functions directly.
#ifndef VLT_STANDIN_INTERFACE_HPP
#define VLT_STANDIN_INTERFACE_HPP

#pragma GCC visibility push(default)
#include "host/logging.h"
#include "host/status.h"
#include "host/storage.h"
#include "standin/standin.h"
#pragma GCC visibility pop

#endif
