#include "tools/replay/redacting/redacted_fields.hpp"

#include <stdexcept>
#include <string_view>

#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::tools {

namespace {

// The parts of `list` between commas outside quotes.
std::vector<std::string> partsOf(std::string_view list) {
  std::vector<std::string> parts(1);
  bool quoted = false;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (list[i] == ',' && !quoted) {
      parts.emplace_back();
      continue;
    }
    if (list[i] == '"') quoted = !quoted;
    parts.back() += list[i];
    if (quoted && list[i] == '\\' && i + 1 < list.size()) parts.back() += list[++i];
  }
  return parts;
}

} // namespace

redacted_fields_t redactedFields(const std::vector<std::string>& lists) {
  redacted_fields_t fields;
  for (const std::string& list : lists) {
    for (const std::string& field : partsOf(list)) {
      fields.names.push_back(field);
      if (field == "all-texts") {
        fields.all_texts = true;
      } else if (field == "all-times") {
        fields.all_times = true;
      } else {
        try {
          fields.places.add(field);
          fields.paths.push_back(field);
        } catch (const std::invalid_argument& e) {
          throw ReplayError(EXIT_USAGE, std::string("--redact: ") + e.what());
        }
      }
    }
  }
  return fields;
}

} // namespace com::velanto::connectivity::tools
