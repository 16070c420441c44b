// The numeric test. A string counts as a number when strtod can begin to read it and it has no x.
// Any other value counts by its kind.
//
//   input   byte: the value's kind; the rest: the string
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "codec/payload_fields.hpp"
#include "fuzz/finding.hpp"

using com::velanto::connectivity::data_t;
using com::velanto::connectivity::fuzz::reportFinding;
using com::velanto::connectivity::plugins::pulsar::dataTConvertableToFloat;

namespace {

bool readsAsNumber(const std::string& text) {
  for (const char c : text) {
    if (c == 'x' || c == 'X') return false;
  }
  char* end = nullptr;
  std::strtod(text.c_str(), &end);
  return end != text.c_str();
}

bool isExpected(std::uint32_t tag, const std::string& text) {
  if (tag == VLT_TAG_STRING || tag == VLT_TAG_BORROWED_STRING) return readsAsNumber(text);
  return tag == VLT_TAG_DOUBLE || tag == VLT_TAG_INTEGER || tag == VLT_TAG_DECIMAL;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const auto* const bytes = reinterpret_cast<const char*>(data) + 1;
  const std::string text(bytes, strnlen(bytes, size - 1)); // ends at a NUL, as a host's string does
  vlt_underlying_data_t value{};
  // Mostly strings; the other kinds with a null block, which the test does not read.
  value.tag = data[0] < 16 ? data[0] : data[0] % 2 * 5 + 5;
  if (value.tag == VLT_TAG_STRING || value.tag == VLT_TAG_BORROWED_STRING) {
    value.value.string = text.c_str();
  }
  // A view of the string as a value, which does not own it.
  const bool actual = dataTConvertableToFloat(data_t::view(value));
  const bool expected = isExpected(value.tag, text);
  if (actual == expected) return 0;
  reportFinding("tag " + std::to_string(value.tag) + ", '" + text + "': taken for " +
                (actual ? "a number" : "no number"));
}
