#include "tools/replay/writing/diagnostics.hpp"

namespace com::velanto::connectivity::tools {

void Diagnostics::take(const record_t& record) {
  if (record.outcome == Outcome::MALFORMED) {
    std::string line = record.place();
    if (record.column != 0) line.append(":").append(std::to_string(record.column));
    line.append(": ").append(record.malformed).append("\n");
    out_ << line;
  }
  takeLog(record.log);
}

void Diagnostics::takeLog(std::span<const log_line_t> lines) {
  for (const log_line_t& line : lines) {
    if (line.level <= level_) out_ << line.text + "\n";
  }
}

} // namespace com::velanto::connectivity::tools
