// How a log text changes when a value of the message is changed.
#ifndef VLT_TOOLS_EXPLAIN_ECHO_HPP
#define VLT_TOOLS_EXPLAIN_ECHO_HPP

#include <string>

namespace com::velanto::connectivity::tools {

// Whether `now` says what `before` does, only with `new_value` or a part of it where `old_value` or
// that part of it stood.
[[nodiscard]] bool isEcho(const std::string& before, const std::string& now,
                          const std::string& old_value, const std::string& new_value);

// Whether `now` is `before` without one piece, and `value` stands in that piece.
[[nodiscard]] bool isWithoutMention(const std::string& before, const std::string& now,
                                    const std::string& value);

} // namespace com::velanto::connectivity::tools

#endif
