// The next link of a replayed chain: writes each message that it is sent as a line of JSON.
#ifndef VLT_TOOLS_REPLAY_EVENT_WRITER_HPP
#define VLT_TOOLS_REPLAY_EVENT_WRITER_HPP

#include <cstdint>
#include <exception>
#include <ostream>
#include <string>

#include "tools/plugin_host/hosted_plugin.hpp"

namespace com::velanto::connectivity::tools {

class EventWriter {
 public:
  // `out` must outlive the writer.
  explicit EventWriter(std::ostream& out) noexcept : out_(out) {}
  EventWriter(const EventWriter&) = delete;
  EventWriter& operator=(const EventWriter&) = delete;
  ~EventWriter() = default;

  // The writer as a plug-in is given it. The messages are only read.
  [[nodiscard]] link_t link() noexcept { return {this, &EventWriter::take}; }

  // Messages that reached the link.
  [[nodiscard]] std::uint64_t count() const noexcept { return count_; }

  // Passes on what is written and throws what has gone wrong since the last call: no exception may
  // cross the plug-in, so it is kept until then. std::runtime_error when `out` takes no more.
  void finishBatch();

 private:
  static void take(void* handle, vlt_underlying_message_t* start,
                   vlt_underlying_message_t* end) noexcept;
  void write(const Message& message);

  std::ostream& out_;
  std::string line_;
  std::uint64_t count_ = 0;
  std::exception_ptr failure_;
  int reason_ = 0; // errno of the write that failed; 0 when it left none
};

} // namespace com::velanto::connectivity::tools

#endif
