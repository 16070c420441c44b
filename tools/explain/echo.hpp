// How a log text changes with a value of the message.
#ifndef VLT_TOOLS_EXPLAIN_ECHO_HPP
#define VLT_TOOLS_EXPLAIN_ECHO_HPP

#include <string>

namespace com::velanto::connectivity::tools {

// Whether `now` equals `before`, only with `new_value` or a part of it in the place of `old_value`
// or that part of it.
[[nodiscard]] bool isEcho(const std::string& before, const std::string& now,
                          const std::string& old_value, const std::string& new_value);

// Whether `now` is `before` without one piece, and that piece contains `value`.
[[nodiscard]] bool isWithoutMention(const std::string& before, const std::string& now,
                                    const std::string& value);

} // namespace com::velanto::connectivity::tools

#endif
