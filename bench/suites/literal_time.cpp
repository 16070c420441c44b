#include "bench/suites/literal_time.hpp"

#include <ctime>
#include <exception>
#include <string>

namespace com::velanto::connectivity::bench {

namespace {

std::optional<double> read(const std::string& text) {
  if (text.size() < 20) return std::nullopt;
  if (text[4] != '-' || text[7] != '-' || text[10] != 'T' || text[13] != ':' || text[16] != ':') {
    return std::nullopt;
  }
  const std::string date_time = text.substr(0, 19);
  const bool has_fraction = text[19] == '.';
  double fraction = 0.0;
  if (has_fraction) fraction = (std::stoi("1" + text.substr(20, 3)) - 1000) / 1000.0;
  const std::string zone = text.substr(has_fraction ? 23 : 19, 6);
  std::string hours;
  std::string minutes;
  if (const std::size_t colon = zone.find(':'); colon != std::string::npos) {
    hours = zone.substr(0, colon);
    minutes = zone.substr(colon + 1);
  } else if (zone.empty() || (zone[0] != 'Z' && zone[0] != 'z')) {
    hours = zone.substr(0, 3);
    minutes = zone.substr(3, 2);
  }
  double offset = 0.0;
  if (!hours.empty() && !minutes.empty()) {
    const int h = std::stoi(hours);
    int m = std::stoi(minutes);
    if (zone.find('-') != std::string::npos) m = -m;
    offset = h * 3600.0 + 0.0 + m * 60.0;
  } else if (hours.empty() != minutes.empty()) {
    return std::nullopt;
  }
  std::tm fields{};
  if (strptime(date_time.c_str(), "%Y-%m-%dT%H:%M:%S", &fields) == nullptr) return std::nullopt;
  return (fraction + static_cast<double>(timegm(&fields))) - offset;
}

} // namespace

std::optional<double> readTimeLiterally(const char* text) noexcept {
  if (text == nullptr) return std::nullopt;
  try {
    return read(text);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

} // namespace com::velanto::connectivity::bench
