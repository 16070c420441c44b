#include "tools/check/trial.hpp"

#include <unistd.h>

#include <cstdio>

#include "tools/check/shared_file.hpp"

namespace com::velanto::connectivity::tools::check {

std::string shown(const lines_t& lines) {
  std::string text;
  for (const std::string& each : lines) text += (text.empty() ? "" : "\n") + each;
  return lines.empty() ? "no lines" : text;
}

bool Trial::holds(bool condition, std::string_view where, std::string_view expected,
                  std::string_view actual) {
  if (condition) return true;
  const std::lock_guard guard(lock_);
  if (++mismatches_ <= MOST_MISMATCHES) write({"F", where, expected, actual});
  return false;
}

std::string Trial::printed() const {
  static_cast<void>(std::fflush(nullptr));
  return readWhole(printed_);
}

void Trial::skip(std::string_view reason) const {
  write({"S", reason});
  throw skipped_t();
}

void Trial::finish() const { write({"E"}); }

void Trial::write(std::initializer_list<std::string_view> fields) const {
  std::string record;
  for (const std::string_view field : fields) {
    record += field.substr(0, field.find('\0')); // a NUL would end the field
    record += '\0';
  }
  // One write: a crash leaves the record whole or not at all. A full disk leaves no record, and a
  // check without its last record counts as crashed.
  static_cast<void>(::write(records_, record.data(), record.size()) < 0);
}

} // namespace com::velanto::connectivity::tools::check
