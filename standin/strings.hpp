// Copies of strings.
#ifndef VLT_STANDIN_STRINGS_HPP
#define VLT_STANDIN_STRINGS_HPP

namespace standin {

// An owned copy of `text` (not null). Null: exhausted.
char* copyText(const char* text) noexcept;

} // namespace standin

#endif
