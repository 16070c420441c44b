#include "tools/replay/event_writer.hpp"

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "tools/ndjson/json_writer.hpp"

namespace com::velanto::connectivity::tools {

void EventWriter::take(void* handle, vlt_underlying_message_t* start,
                       vlt_underlying_message_t* end) noexcept {
  auto& writer = *static_cast<EventWriter*>(handle);
  try {
    const auto* const last = reinterpret_cast<const Message*>(end);
    for (const auto* m = reinterpret_cast<const Message*>(start); m != last; ++m) writer.write(*m);
  } catch (...) {
    writer.failure_ = std::current_exception();
  }
}

void EventWriter::write(const Message& message) {
  ++count_;
  line_.clear();
  writeJson(line_, message);
  line_ += '\n';
  if (!out_) return;
  errno = 0;
  if (!out_.write(line_.data(), static_cast<std::streamsize>(line_.size()))) reason_ = errno;
}

void EventWriter::finishBatch() {
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
  if (out_) {
    errno = 0;
    if (!out_.flush()) reason_ = errno;
  }
  if (out_) return;
  const std::string reason = reason_ == 0 ? "" : ": " + std::generic_category().message(reason_);
  throw std::runtime_error("cannot write the events" + reason);
}

} // namespace com::velanto::connectivity::tools
