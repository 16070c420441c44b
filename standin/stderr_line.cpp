// One line, one write; only a full pipe or a signal makes another write for the rest.
#include "standin/stderr_line.hpp"

#include <unistd.h>

#include <cerrno>

namespace standin {

void writeStderrLine(char* text, std::size_t length) noexcept {
  text[length] = '\n';
  const std::size_t size = length + 1;
  for (std::size_t written = 0; written < size;) {
    const ssize_t result = ::write(STDERR_FILENO, text + written, size - written);
    if (result < 0 && errno != EINTR) break;
    if (result > 0) written += static_cast<std::size_t>(result);
  }
  text[length] = '\0';
}

} // namespace standin
