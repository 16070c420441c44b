#include "tools/replay/redacting/redaction.hpp"

#include "tools/record/drop_reason.hpp"

namespace com::velanto::connectivity::tools {

namespace {

// "dropped, missing-key text": all that must stay the same.
std::string resultOf(const record_t& record) {
  std::string text = nameOf(record.outcome);
  if (record.outcome != Outcome::DROPPED) return text;
  const drop_reason_t reason = dropReasonOf(record.log);
  text.append(", ").append(reason.code);
  if (!reason.key.empty()) text.append(" ").append(reason.key);
  return text;
}

} // namespace

Redaction::Redaction(const ReplayOptions& options, const PluginLibrary& library,
                     const data_t& configuration, Direction direction, std::ostream& diagnostics)
    : diagnostics_(diagnostics),
      fields_(redactedFields(options.redact)),
      pseudonyms_(options.redact_key),
      redactor_(fields_, pseudonyms_),
      file_(*options.redacted) {
  chain_.emplace(library, configuration, direction, log_);
}

void Redaction::take(const record_t& record) {
  if (record.outcome == Outcome::MALFORMED) {
    ++left_out_;
    return;
  }
  has_message_ = true;
  record_t& copy = chain_->record;
  copy.number = record.number;
  copy.file = record.file;
  copy.line_number = record.line_number;
  copy.recorded = record.recorded;
  std::string line = record.line;
  line.erase(record.annotation.begin, record.annotation.size);
  copy.line = redactor_.redacted(line);
  chain_->worker.process({&copy, 1}, [&](const record_t& result) { compare(record, result); });
  chain_->worker.incidents() = {};
  file_.write(copy.line + "\n");
}

void Redaction::takeRemarks(std::string_view lines) {
  while (!lines.empty()) {
    const std::size_t end = lines.find('\n');
    file_.write(redactor_.redacted(lines.substr(0, end)));
    file_.write("\n");
    lines.remove_prefix(end + 1);
  }
}

void Redaction::compare(const record_t& original, const record_t& copy) const {
  const std::string before = resultOf(original);
  const std::string after = resultOf(copy);
  if (before == after && original.kind == copy.kind) return;
  throw ReplayError(EXIT_DIFFERENT, original.place() + ": redacted, this message is not '" +
                                        before + "' but '" + after + "'; " + file_.path() +
                                        " is not written");
}

exit_status_t Redaction::finish() {
  chain_->worker.shutdown();
  chain_.reset();
  if (left_out_ > 0) {
    diagnostics_ << REPLAY_NAME
                 << ": " + std::to_string(left_out_) + " malformed lines are not in " +
                        file_.path() + "\n";
  }
  std::size_t unmet = 0;
  for (const std::string& path : fields_.paths) {
    if (redactor_.hasMet(fields_.places.at(path))) continue;
    diagnostics_ << REPLAY_NAME << ": --redact: no message has the field " + path + "\n";
    ++unmet;
  }
  if (unmet < fields_.names.size() || !has_message_) return EXIT_FINE;
  throw ReplayError(EXIT_USAGE, "nothing would be hidden; " + file_.path() + " is not written");
}

} // namespace com::velanto::connectivity::tools
