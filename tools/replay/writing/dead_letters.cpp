#include "tools/replay/writing/dead_letters.hpp"

#include "ndjson/json_text.hpp"
#include "tools/record/drop_reason.hpp"

namespace com::velanto::connectivity::tools {

void DeadLetters::take(const record_t& record) {
  if (record.outcome == Outcome::DROPPED) file_.write(deadLetterOf(record) + "\n");
}

std::string deadLetterOf(const record_t& record) {
  const drop_reason_t reason = dropReasonOf(record.log);
  std::string member = R"("dropped":{"file":)";
  appendJsonText(member, *record.file);
  member += ",\"line\":" + std::to_string(record.line_number) + ",\"reason\":";
  appendJsonText(member, reason.code);
  member += ",\"key\":";
  appendJsonText(member, reason.key);
  member += ",\"text\":";
  appendJsonText(member, reason.text);
  member += '}';

  std::string line = record.line;
  line.erase(record.annotation.begin, record.annotation.size);
  const std::size_t brace = line.rfind('}');
  const bool has_members = line.find_last_not_of(" \t\r", brace - 1) != line.find('{');
  line.insert(brace, (has_members ? "," : "") + member);
  return line;
}

} // namespace com::velanto::connectivity::tools
