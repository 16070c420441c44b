// The configuration file: it is refused with its place, or its entries, written as JSON, which is
// YAML, too, read as the same entries. A scalar has the kind that its form tells.
//
//   input   the file; or letters, digits, '+', '-' and '.' alone, which are a scalar
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/block_count.hpp"
#include "fuzz/finding.hpp"
#include "fuzz/memory_file.hpp"
#include "ndjson/json_writer.hpp"
#include "tools/options/exit_status.hpp"
#include "tools/replay/input/configuration_file.hpp"

namespace fuzz = com::velanto::connectivity::fuzz;
namespace tools = com::velanto::connectivity::tools;
using com::velanto::connectivity::data_t;
using com::velanto::connectivity::writeJson;

namespace {

using entries_t = std::vector<tools::configuration_entry_t>;

std::optional<entries_t> read(std::string_view content) {
  static const fuzz::MemoryFile FILE;
  static const std::string PATH = FILE.path();
  FILE.write(content);
  try {
    return tools::readConfiguration(PATH);
  } catch (const tools::ReplayError& e) {
    static const std::regex REFUSAL(PATH + ":[1-9][0-9]*:[1-9][0-9]*: [^\n]+");
    fuzz::requireReason(e.what());
    fuzz::require(e.status() == tools::EXIT_PLUGIN && std::regex_match(e.what(), REFUSAL),
                  "a refusal has its place");
    return std::nullopt;
  }
}

std::string asJson(const entries_t& entries) {
  std::string json = "{";
  for (const tools::configuration_entry_t& entry : entries) {
    if (json.size() > 1) json += ", ";
    writeJson(json, data_t(entry.key.c_str()));
    json += ": ";
    writeJson(json, entry.value);
  }
  return json + "}";
}

// The kind of a scalar without quotes; nothing for a number that may be out of range.
std::optional<std::uint32_t> kindOf(const std::string& scalar) {
  using std::regex;
  static const regex EMPTY("|null|Null|NULL");
  static const regex BOOLEAN("true|True|TRUE|false|False|FALSE");
  static const regex INTEGER("[-+]?[0-9]{1,18}|[+]?0x[0-9a-fA-F]{1,15}");
  static const regex REAL(R"([-+]?([0-9]{1,30}([.][0-9]*)?|[.][0-9]+)([eE][-+]?[0-9]{1,2})?)");
  static const regex ANY_NUMBER("[-+]?([0-9.]+([eE][-+]?[0-9]+)?|0x[0-9a-fA-F]+)");
  if (std::regex_match(scalar, EMPTY)) return VLT_TAG_EMPTY;
  if (std::regex_match(scalar, BOOLEAN)) return VLT_TAG_BOOLEAN;
  if (std::regex_match(scalar, INTEGER)) return VLT_TAG_INTEGER;
  if (std::regex_match(scalar, REAL) && scalar.find_first_of(".eE") != std::string::npos) {
    return VLT_TAG_DOUBLE;
  }
  if (std::regex_match(scalar, ANY_NUMBER)) return {};
  return VLT_TAG_STRING;
}

void checkScalar(const std::string& scalar) {
  const auto entries = read("key: " + scalar + "\n");
  const auto kind = kindOf(scalar);
  if (!entries || !kind) return;
  fuzz::require(entries->size() == 1 && entries->front().value.type_tag() == *kind,
                "a scalar has the kind of its form");
}

// In bytes, of a key without a "?" before it, which JSON has not.
constexpr std::size_t LONGEST_KEY = 1024;

void checkFile(std::string_view content) {
  const auto first = read(content);
  if (!first) return;
  const std::string json = asJson(*first);
  if (json.size() > LONGEST_KEY) return;
  const auto second = read(json);
  fuzz::require(second.has_value() && second->size() == first->size(), "JSON is read, too");
  for (std::size_t i = 0; i < first->size(); ++i) {
    fuzz::require((*first)[i].key == (*second)[i].key && (*first)[i].value == (*second)[i].value,
                  "the same entries are in JSON");
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::BlockCount no_block_is_left;
  const std::string input(reinterpret_cast<const char*>(data), size);
  const bool is_scalar = std::all_of(input.begin(), input.end(), [](unsigned char c) {
    return std::isalnum(c) != 0 || c == '+' || c == '-' || c == '.';
  });
  is_scalar ? checkScalar(input) : checkFile(input);
  return 0;
}
