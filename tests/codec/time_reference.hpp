// A second reader of timestamps, for comparison with the codec's. It is slow and simple: each step is
// one rule, and calls strptime, timegm or std::stoi on the texts that the rule names.
#ifndef VLT_TESTS_CODEC_TIME_REFERENCE_HPP
#define VLT_TESTS_CODEC_TIME_REFERENCE_HPP

#include <bit>
#include <boost/optional.hpp>
#include <cstdint>
#include <ctime>
#include <exception>
#include <string>

namespace com::velanto::connectivity::test {

inline boost::optional<double> referenceOffset(const std::string& zone) {
  std::string hours;
  std::string minutes;
  if (zone.find(':') != std::string::npos) {
    hours = zone.substr(0, zone.find(':'));
    minutes = zone.substr(zone.find(':') + 1);
  } else if (!zone.empty() && (zone[0] == 'Z' || zone[0] == 'z')) {
    return 0.0;
  } else {
    hours = zone.substr(0, 3);
    minutes = zone.substr(3, 2);
  }
  if (hours.empty() && minutes.empty()) return 0.0;
  if (hours.empty() || minutes.empty()) return boost::none;
  const int h = std::stoi(hours);
  const int m = zone.find('-') == std::string::npos ? std::stoi(minutes) : -std::stoi(minutes);
  return h * 3600.0 + 0.0 + m * 60.0;
}

inline boost::optional<double> referenceSteps(const std::string& text) {
  if (text.size() < 20) return boost::none;
  if (text[4] != '-' || text[7] != '-' || text[10] != 'T') return boost::none;
  if (text[13] != ':' || text[16] != ':') return boost::none;
  const bool dot = text[19] == '.';
  std::string thousandths = "1"; // keeps leading zeros
  if (dot) thousandths += text.substr(20, 3);
  const double fraction = dot ? (std::stoi(thousandths) - 1000) / 1000.0 : 0.0;
  const auto offset = referenceOffset(text.substr(dot ? 23 : 19, 6));
  if (!offset) return boost::none;
  std::tm fields{};
  const std::string date_time = text.substr(0, 19);
  if (strptime(date_time.c_str(), "%Y-%m-%dT%H:%M:%S", &fields) == nullptr) return boost::none;
  return (fraction + static_cast<double>(timegm(&fields))) - *offset;
}

inline boost::optional<double> referenceTime(const char* text) {
  if (text == nullptr) return boost::none;
  try {
    return referenceSteps(text);
  } catch (const std::exception&) {
    return boost::none;
  }
}

// For comparisons in which -0.0 and the last digit count.
inline std::uint64_t bitsOf(const boost::optional<double>& seconds) {
  return seconds ? std::bit_cast<std::uint64_t>(*seconds) : 0;
}

} // namespace com::velanto::connectivity::test

#endif
