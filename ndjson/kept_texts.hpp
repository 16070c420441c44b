// Owners for borrowed strings that are read back: their values own no text, and may live as long as
// the process.
#ifndef VLT_NDJSON_KEPT_TEXTS_HPP
#define VLT_NDJSON_KEPT_TEXTS_HPP

#include <string>

namespace com::velanto::connectivity {

// `text`, kept until the process ends, once however often it is asked for. So the memory grows with
// the number of different texts; a host's borrowed strings are few constants. From any thread.
// Throws std::bad_alloc.
[[nodiscard]] const char* keepText(const std::string& text);

} // namespace com::velanto::connectivity

#endif
