// A time, by position:
//
//   0         10        19
//   2023-04-05T06:07:08Z            the zone follows the seconds
//   2023-04-05T06:07:08.123+01:00   or a point and three digits; the zone is then at position 23
//
// Both positions are fixed, so a fraction of another length shifts what counts as the zone.
#include "tests/plain_build/readings.hpp"

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <stdexcept>

namespace plain_build {
namespace {

constexpr size_t ZONE_LENGTH = 6;

// Leading zeros count: the digits 045 are 1045 behind the one, and 0.045 seconds.
double fractionOf(const std::string& text) {
  if (text.at(19) != '.') return 0.0;
  return (std::stoi("1" + text.substr(20, 3)) - 1000) / 1000.0;
}

struct Offset {
  std::string hours;
  std::string minutes;
};

Offset splitZone(const std::string& zone) {
  const size_t colon = zone.find(':');
  if (colon != std::string::npos) return {zone.substr(0, colon), zone.substr(colon + 1)};
  if (!zone.empty() && (zone[0] == 'Z' || zone[0] == 'z')) return {};
  return {zone.substr(0, 3), zone.substr(3, 2)};
}

// The offset from UTC. Throws what std::stoi throws.
std::optional<double> offsetOf(const std::string& zone) {
  const Offset offset = splitZone(zone);
  if (offset.hours.empty() != offset.minutes.empty()) return std::nullopt;
  if (offset.hours.empty()) return 0.0;
  const int hours = std::stoi(offset.hours);
  const int minutes = std::stoi(offset.minutes);
  const bool is_west = zone.find('-') != std::string::npos;
  return hours * 3600.0 + 0.0 + (is_west ? -minutes : minutes) * 60.0;
}

bool hasSeparators(const std::string& text) {
  return text.size() >= 20 && text[4] == '-' && text[7] == '-' && text[10] == 'T' &&
         text[13] == ':' && text[16] == ':';
}

} // namespace

bool isNumeric(const RawValue& value) {
  if (value.tag == VLT_TAG_DOUBLE || value.tag == VLT_TAG_INTEGER || value.tag == VLT_TAG_DECIMAL) {
    return true;
  }
  if (!isString(value)) return false;
  const char* const text = textOf(value);
  char* end = nullptr;
  std::strtod(text, &end);
  return end != text && std::strpbrk(text, "xX") == nullptr;
}

std::optional<double> secondsOf(const std::string& text) {
  if (!hasSeparators(text)) return std::nullopt;
  try {
    const double fraction = fractionOf(text);
    const std::optional<double> offset =
        offsetOf(text.substr(text[19] == '.' ? 23 : 19, ZONE_LENGTH));
    std::tm time = {};
    if (!offset || strptime(text.substr(0, 19).c_str(), "%Y-%m-%dT%H:%M:%S", &time) == nullptr) {
      return std::nullopt;
    }
    return (fraction + static_cast<double>(timegm(&time))) - *offset;
  } catch (const std::logic_error&) { // out_of_range and invalid_argument: a part is no number
    return std::nullopt;
  }
}

} // namespace plain_build
