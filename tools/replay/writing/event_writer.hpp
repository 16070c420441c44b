// Writes the events of each record as lines of JSON. Holds them back until there are many or the
// input pauses: a write costs more than a message.
#ifndef VLT_TOOLS_REPLAY_WRITING_EVENT_WRITER_HPP
#define VLT_TOOLS_REPLAY_WRITING_EVENT_WRITER_HPP

#include <ostream>
#include <string>

#include "tools/record/output.hpp"
#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

class EventWriter final : public Consumer {
 public:
  // `out` must outlive the writer.
  explicit EventWriter(std::ostream& out) : out_(out, "cannot write the events") {}

  void take(const record_t& record) override { out_.write(record.events); }
  void pause() override { out_.flush(); }

  // The reader of the events has closed the pipe, as `| head` does: nothing is left to do.
  [[nodiscard]] bool closed() const noexcept { return out_.closed(); }

 private:
  Output out_;
};

} // namespace com::velanto::connectivity::tools

#endif
