#include "codec/timestamps.hpp"

#include <ctime>
#include <exception>
#include <string>
#include <string_view>

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

constexpr std::size_t SHORTEST = 20; // date, time and one character of zone
constexpr std::size_t DATE_TIME_LENGTH = 19;
constexpr std::size_t FRACTION_AT = 20;
constexpr std::size_t FRACTION_LENGTH = 3;
constexpr std::size_t ZONE_AFTER_FRACTION_AT = 23;
constexpr std::size_t ZONE_LENGTH = 6;
constexpr double SECONDS_PER_HOUR = 3600.0;
constexpr double SECONDS_PER_MINUTE = 60.0;

// std::stoi decides what a number is; its exceptions end the parsing.
int number(std::string_view digits) { return std::stoi(std::string(digits)); }

// The marks between the numbers; whether the numbers are some is strptime's to say.
bool hasMarks(std::string_view text) {
  return text[4] == '-' && text[7] == '-' && text[10] == 'T' && text[13] == ':' && text[16] == ':';
}

// Thousandths behind '.', as a fraction of a second. The leading 1 keeps leading zeros.
double readFraction(std::string_view text) {
  std::string digits = "1";
  digits += text.substr(FRACTION_AT, FRACTION_LENGTH);
  return (number(digits) - 1000) / 1000.0;
}

// The offset of a zone from UTC, in seconds.
boost::optional<double> readOffset(std::string_view zone) {
  std::string_view hours;
  std::string_view minutes;
  const std::size_t colon = zone.find(':');
  if (colon != std::string_view::npos) {
    hours = zone.substr(0, colon);
    minutes = zone.substr(colon + 1);
  } else if (zone.substr(0, 1) != "Z" && zone.substr(0, 1) != "z") {
    hours = zone.substr(0, 3);
    minutes = zone.substr(3, 2); // throws for a zone of less than three characters
  }
  if (hours.empty() != minutes.empty()) return boost::none;
  if (hours.empty()) return 0.0;

  const int h = number(hours);
  int m = number(minutes);
  if (zone.find('-') != std::string_view::npos) m = -m;
  return h * SECONDS_PER_HOUR + 0.0 + m * SECONDS_PER_MINUTE;
}

// Seconds since the epoch, read as UTC.
boost::optional<double> readDateTime(std::string_view text) {
  std::tm fields{};
  const std::string date_time(text.substr(0, DATE_TIME_LENGTH));
  if (strptime(date_time.c_str(), "%Y-%m-%dT%H:%M:%S", &fields) == nullptr) return boost::none;
  return static_cast<double>(timegm(&fields));
}

boost::optional<double> parse(std::string_view text) {
  if (text.size() < SHORTEST || !hasMarks(text)) return boost::none;
  const bool has_fraction = text[DATE_TIME_LENGTH] == '.';
  const double fraction = has_fraction ? readFraction(text) : 0.0;
  const std::size_t zone_at = has_fraction ? ZONE_AFTER_FRACTION_AT : DATE_TIME_LENGTH;
  const auto offset = readOffset(text.substr(zone_at, ZONE_LENGTH));
  if (!offset) return boost::none;
  const auto date_time = readDateTime(text);
  if (!date_time) return boost::none;
  // In this order: next to powers of two another one gives another last bit.
  return (fraction + *date_time) - *offset;
}

} // namespace

boost::optional<double> tryParseTime(const char* text) noexcept {
  if (text == nullptr) return boost::none;
  try {
    return parse(text);
  } catch (const std::exception&) { // a part that is too short, or no number
    return boost::none;
  }
}

} // namespace com::velanto::connectivity::plugins::pulsar
