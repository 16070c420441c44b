// The fields that --redact names: paths as in ndjson/field_set.hpp, and two words for more.
//
//   all-texts    every text of payload and metadata but timestamps
//   all-times    every timestamp, and the times that a recording has of itself
#ifndef VLT_TOOLS_REPLAY_REDACTING_REDACTED_FIELDS_HPP
#define VLT_TOOLS_REPLAY_REDACTING_REDACTED_FIELDS_HPP

#include <string>
#include <vector>

#include "ndjson/field_set.hpp"

namespace com::velanto::connectivity::tools {

struct redacted_fields_t {
  std::vector<std::string> names; // as given
  std::vector<std::string> paths; // the names but the two words
  FieldSet places;
  bool all_texts = false;
  bool all_times = false;
};

// Reads lists of fields with commas between them. Throws ReplayError with EXIT_USAGE.
[[nodiscard]] redacted_fields_t redactedFields(const std::vector<std::string>& lists);

} // namespace com::velanto::connectivity::tools

#endif
