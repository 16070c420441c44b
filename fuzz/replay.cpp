// The reader of recorded messages: each line that it accepts is JSON to another reader too, and
// reads the same after writing it.
//
//   input   lines, each read as a message; and all of it read as one value
#include <rapidjson/reader.h>
#include <rapidjson/stream.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "fuzz/block_count.hpp"
#include "fuzz/finding.hpp"
#include "ndjson/json_reader.hpp"
#include "ndjson/json_writer.hpp"

namespace fuzz = com::velanto::connectivity::fuzz;
using com::velanto::connectivity::data_t;
using com::velanto::connectivity::JsonReader;
using com::velanto::connectivity::MalformedJson;
using com::velanto::connectivity::Message;
using com::velanto::connectivity::writeJson;

namespace {

// By its grammar alone: RapidJSON's way to the nearest double has undefined behaviour for 0e111,
// and writing and reading again checks the values. It refuses 0e1111 for no good reason, and then
// does not read on.
bool isJson(const std::string& text) {
  constexpr unsigned FLAGS = rapidjson::kParseValidateEncodingFlag |
                             rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseIterativeFlag;
  rapidjson::Reader reader;
  rapidjson::BaseReaderHandler<> nothing;
  constexpr std::string_view MARK = "\xEF\xBB\xBF"; // which our reader skips
  rapidjson::StringStream stream(text.c_str() + (text.starts_with(MARK) ? MARK.size() : 0));
  const rapidjson::ParseErrorCode error = reader.Parse<FLAGS>(stream, nothing).Code();
  return error == rapidjson::kParseErrorNone || error == rapidjson::kParseErrorNumberTooBig;
}

// The result of `read`, unless it refuses the line with a reason of one line.
template <class Read>
auto readIfWellFormed(const Read& read, std::string_view text)
    -> std::optional<decltype(read(text))> {
  try {
    return read(text);
  } catch (const MalformedJson& e) {
    fuzz::requireReason(e.what());
    return std::nullopt;
  }
}

bool equal(const data_t& left, const data_t& right) { return left == right; }
bool equal(const Message& left, const Message& right) {
  return left.getPayload() == right.getPayload() && left.getMetadataMap() == right.getMetadataMap();
}

// The same JSON, except for the order of entries.
std::string sorted(std::string text) {
  std::sort(text.begin(), text.end());
  return text;
}

template <class Read>
void check(const Read& read, std::string_view text) {
  const auto first = readIfWellFormed(read, text);
  if (!first) return;
  fuzz::require(isJson(std::string(text)), "an accepted line is JSON");
  std::string written;
  writeJson(written, *first);
  const auto second = readIfWellFormed(read, written);
  fuzz::require(second.has_value(), "a written message can be read");
  fuzz::require(equal(*first, *second), "a written message reads the same");
  std::string again;
  writeJson(again, *second);
  fuzz::require(sorted(written) == sorted(again), "the same is written again");
}

void checkAll(std::string_view input) {
  static JsonReader reader; // as the tool has one for all lines
  check([](std::string_view text) { return reader.parseValue(text); }, input);
  while (!input.empty()) {
    const std::size_t end = std::min(input.find('\n'), input.size());
    check([](std::string_view text) { return reader.parseMessage(text); }, input.substr(0, end));
    input.remove_prefix(std::min(end + 1, input.size()));
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::BlockCount no_block_is_left;
  checkAll({reinterpret_cast<const char*>(data), size});
  return 0;
}
