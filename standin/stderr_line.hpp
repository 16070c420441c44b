// Lines on standard error, which several threads and libraries share.
#ifndef VLT_STANDIN_STDERR_LINE_HPP
#define VLT_STANDIN_STDERR_LINE_HPP

#include <cstddef>

namespace standin {

// Writes the `length` bytes of `text` and a line end, in one write so that no other output comes
// between them. `text` has its NUL at `length`; the line end takes its place during the call.
// Ignores errors: there is nowhere left to report them.
void writeStderrLine(char* text, std::size_t length) noexcept;

} // namespace standin

#endif
