#include "tools/record/output.hpp"

#include <cerrno>
#include <system_error>

#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t LARGE = std::size_t{64} << 10; // bytes

} // namespace

void Output::write(std::string_view text) {
  if (closed_) return;
  pending_ += text;
  if (pending_.size() >= LARGE) flush();
}

void Output::flush() {
  if (closed_ || pending_.empty()) return;
  errno = 0;
  out_.write(pending_.data(), static_cast<std::streamsize>(pending_.size()));
  pending_.clear();
  if (out_.flush()) return;
  const int reason = errno;
  closed_ = reason == EPIPE;
  if (closed_) return;
  const std::string why = reason == 0 ? "" : ": " + std::generic_category().message(reason);
  throw ReplayError(EXIT_IO, complaint_ + why);
}

} // namespace com::velanto::connectivity::tools
