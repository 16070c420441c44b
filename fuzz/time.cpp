// Timestamps: the plain reading of any string gives the same result, bit for bit.
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>

#include "codec/timestamps.hpp"
#include "fuzz/finding.hpp"
#include "tests/codec/time_reference.hpp"

using com::velanto::connectivity::fuzz::reportFinding;
using com::velanto::connectivity::plugins::pulsar::tryParseTime;
using com::velanto::connectivity::test::referenceTime;

namespace {

std::string described(const boost::optional<double>& seconds) {
  if (!seconds) return "nothing";
  return std::to_string(*seconds) + " (bits " +
         std::to_string(std::bit_cast<std::uint64_t>(*seconds)) + ")";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto* const bytes = reinterpret_cast<const char*>(data);
  const std::string text(bytes, strnlen(bytes, size)); // ends at a NUL, as the host's strings do
  const std::string actual = described(tryParseTime(text.c_str()));
  const std::string expected = described(referenceTime(text.c_str()));
  if (actual == expected) return 0;
  reportFinding("'" + text + "' reads as " + actual + ", not as " + expected);
}
