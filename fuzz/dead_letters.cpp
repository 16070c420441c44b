// Dead letters: the line of a dropped message, with its remark, is the same message again. Without
// the remark it is byte for byte the line, and a new remark takes the place of an old one.
//
//   input   two lines: the text in the log, which ends at a NUL, and the line of the message
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "fuzz/block_count.hpp"
#include "fuzz/finding.hpp"
#include "ndjson/json_reader.hpp"
#include "ndjson/json_text.hpp"
#include "tests/ndjson/recorded_law.hpp"
#include "tools/replay/writing/dead_letters.hpp"

namespace fuzz = com::velanto::connectivity::fuzz;
namespace test = com::velanto::connectivity::test;
namespace tools = com::velanto::connectivity::tools;
using com::velanto::connectivity::JsonReader;
using com::velanto::connectivity::MalformedJson;
using com::velanto::connectivity::Message;

namespace {

// A dropped message with its line, and the remark in it.
struct dropped_t {
  Message message;
  tools::record_t record;

  dropped_t(const std::string& log, std::string_view line) {
    static const std::string FILE = "in.ndjson";
    static JsonReader reader;
    message = reader.parseMessage(line);
    record.file = &FILE;
    record.line_number = 7;
    record.line = line;
    record.annotation = reader.remark();
    record.log = {{tools::DROPPED_LEVEL, log}};
  }
  [[nodiscard]] std::string withoutRemark() const {
    std::string line = record.line;
    return line.erase(record.annotation.begin, record.annotation.size);
  }
};

void check(const std::string& log, std::string_view line) {
  std::optional<dropped_t> dropped;
  try {
    dropped.emplace(log, line);
  } catch (const MalformedJson& e) {
    return fuzz::requireReason(e.what());
  }
  const dropped_t again(log, tools::deadLetterOf(dropped->record));
  const std::string& letter = again.record.line;
  fuzz::require(
      test::isReadBack(dropped->message.getPayload(), again.message.getPayload()) &&
          test::isReadBack(dropped->message.getMetadataMap(), again.message.getMetadataMap()),
      "a dead letter is the same message");
  fuzz::require(again.record.annotation.size > 0, "a dead letter has its remark");
  fuzz::require(again.withoutRemark() == dropped->withoutRemark(), "the line stays");
  fuzz::require(tools::deadLetterOf(again.record) == letter, "there is one remark");
  std::string text = R"("text":)";
  com::velanto::connectivity::appendJsonText(text, log);
  fuzz::require(letter.find(text) != std::string::npos, "the remark has the text of the log");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::BlockCount no_block_is_left;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t end = std::min(input.find('\n'), size);
  const std::string_view rest = input.substr(std::min(end + 1, size));
  check(std::string(input.substr(0, std::min(end, input.find('\0')))),
        rest.substr(0, rest.find('\n')));
  return 0;
}
