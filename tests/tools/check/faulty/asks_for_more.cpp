// A plug-in with this source asks the host's library for a function of the stand-in's own.
#include "standin/standin.h"

[[gnu::used]] static const auto ASKED = &standin_live_blocks_total;
