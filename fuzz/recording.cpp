// Recorded lines, in both directions: what the writer writes, the reader reads as the same message.
//
//   input   an even byte, then bytes that describe a message; or an odd byte, then the rest of a
//           recorded line. What the reader accepts of that is a message, too, and the redactor
//           makes of it another line that the reader accepts
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "fuzz/block_count.hpp"
#include "fuzz/finding.hpp"
#include "ndjson/json_reader.hpp"
#include "tests/ndjson/recorded_law.hpp"
#include "tools/replay/redacting/line_redactor.hpp"

namespace fuzz = com::velanto::connectivity::fuzz;
namespace test = com::velanto::connectivity::test;
namespace tools = com::velanto::connectivity::tools;
using com::velanto::connectivity::JsonReader;
using com::velanto::connectivity::MalformedJson;
using com::velanto::connectivity::Message;

namespace {

void requireReadBack(const Message& message) {
  fuzz::require(test::isReadBack(message), "a recorded message reads back as the same");
}

// `line` is a message.
void checkRedaction(JsonReader& reader, const std::string& line) {
  static const tools::Pseudonyms PSEUDONYMS({});
  static const tools::redacted_fields_t ALL =
      tools::redactedFields({"all-texts,all-times,payload"});
  static const tools::redacted_fields_t NONE = tools::redactedFields({R"(metadata."\u0001")"});
  static tools::LineRedactor all(ALL, PSEUDONYMS);
  static tools::LineRedactor none(NONE, PSEUDONYMS);
  try {
    static_cast<void>(reader.parseMessage(all.redacted(line)));
  } catch (const MalformedJson& e) {
    fuzz::requireNone(e.what(), "a redacted line is a message");
  }
  const bool has_field = line.find("\\u0001") != std::string::npos;
  fuzz::require(has_field || none.redacted(line) == line, "fields that are not named stay");
}

void checkLine(std::string_view rest) {
  static JsonReader reader;
  const std::string line = test::REMARK + std::string(rest);
  Message message;
  try {
    message = reader.parseMessage(line);
  } catch (const MalformedJson& e) {
    return fuzz::requireReason(e.what());
  }
  requireReadBack(message);
  checkRedaction(reader, line);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const fuzz::BlockCount no_block_is_left;
  const std::span<const std::uint8_t> rest(data + 1, size - 1);
  if (data[0] % 2 == 0) {
    requireReadBack(test::messageFrom(rest));
  } else {
    checkLine({reinterpret_cast<const char*>(rest.data()), rest.size()});
  }
  return 0;
}
