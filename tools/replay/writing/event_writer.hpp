// Writes the events of each record as lines of JSON. Holds them back until there are many or the
// input pauses: a write costs more than a message. A terminal gets them at once, before later lines
// of the log.
#ifndef VLT_TOOLS_REPLAY_WRITING_EVENT_WRITER_HPP
#define VLT_TOOLS_REPLAY_WRITING_EVENT_WRITER_HPP

#include <ostream>
#include <string>

#include "ndjson/visible_text.hpp"
#include "tools/record/output.hpp"
#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

class EventWriter final : public Consumer {
 public:
  // `out` must outlive the writer. On a terminal the lines have escapes for its control characters,
  // and mean the same.
  EventWriter(std::ostream& out, bool on_terminal)
      : out_(out, "cannot write the events"), on_terminal_(on_terminal) {}

  void take(const record_t& record) override {
    if (!on_terminal_) return out_.write(record.events);
    out_.write(visibleLines(record.events));
    out_.flush();
  }
  void pause() override { out_.flush(); }

  // The reader of the events has closed the pipe, as `| head` does: nothing is left to do.
  [[nodiscard]] bool closed() const noexcept { return out_.closed(); }

 private:
  Output out_;
  bool on_terminal_;
};

} // namespace com::velanto::connectivity::tools

#endif
