#include "tools/report/own_time.hpp"

#include <chrono>
#include <cstdio>

#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools::report {

namespace {

constexpr std::int64_t LAST = 253'402'300'799; // of the year 9999

// The digits and signs of `form`, where 0 means any digit; takes them off the text.
bool takeForm(std::string_view& text, std::string_view form) noexcept {
  if (text.size() < form.size()) return false;
  for (std::size_t i = 0; i < form.size(); ++i) {
    const bool is_digit = text[i] >= '0' && text[i] <= '9';
    if (form[i] == '0' ? !is_digit : text[i] != form[i]) return false;
  }
  text.remove_prefix(form.size());
  return true;
}

std::int64_t numberAt(std::string_view text, std::size_t at, std::size_t digits) noexcept {
  std::int64_t number = 0;
  for (const char c : text.substr(at, digits)) number = number * 10 + (c - '0');
  return number;
}

std::optional<std::int64_t> inRange(std::int64_t seconds) noexcept {
  if (seconds < 0 || seconds > LAST) return {};
  return seconds;
}

} // namespace

std::optional<std::int64_t> secondsOf(std::string_view text) noexcept {
  const std::string_view all = text;
  if (!takeForm(text, "0000-00-00T00:00:00")) return {};
  if (text.starts_with('.')) {
    text.remove_prefix(std::min(text.find_first_not_of("0123456789", 1), text.size()));
  }
  std::int64_t offset = 0;
  if (text.starts_with('+') || text.starts_with('-')) {
    const std::int64_t sign = text.front() == '-' ? -1 : 1;
    const std::string_view zone = text.substr(1);
    text.remove_prefix(1);
    if (!takeForm(text, "00:00")) return {};
    offset = sign * (numberAt(zone, 0, 2) * 3600 + numberAt(zone, 3, 2) * 60);
  } else if (text.starts_with('Z')) {
    text.remove_prefix(1);
  }
  const std::chrono::year_month_day date(
      std::chrono::year(static_cast<int>(numberAt(all, 0, 4))),
      std::chrono::month(static_cast<unsigned>(numberAt(all, 5, 2))),
      std::chrono::day(static_cast<unsigned>(numberAt(all, 8, 2))));
  if (!text.empty() || !date.ok()) return {};
  const std::int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
  return inRange(days * 86'400 + numberAt(all, 11, 2) * 3600 + numberAt(all, 14, 2) * 60 +
                 numberAt(all, 17, 2) - offset);
}

std::string timeText(std::int64_t seconds, std::int64_t step) {
  const std::chrono::sys_seconds time{std::chrono::seconds(seconds)};
  const auto days = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(days);
  const std::chrono::hh_mm_ss clock(time - days);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02ld:%02ld:%02ld",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<long>(clock.hours().count()),
                static_cast<long>(clock.minutes().count()),
                static_cast<long>(clock.seconds().count()));
  constexpr std::size_t DATE = 10; // characters
  constexpr std::size_t MINUTES = 16;
  if (step % 86'400 == 0) return {text.data(), DATE};
  if (step % 60 == 0) return {text.data(), MINUTES};
  return text.data();
}

std::optional<std::int64_t> OwnTimeReader::timeOf(const Message& message) const {
  const auto* const payload = message.getPayload().get_if<map_t>();
  if (payload == nullptr) return {};
  for (const hashed_key_t& key : keys_) {
    const data_t* const value = payload->find_value(key);
    if (value == nullptr) continue;
    std::optional<std::int64_t> seconds;
    if (value->is_string()) seconds = secondsOf(text_or_empty(value->get<const char*>()));
    const auto* const number = value->get_if<double>();
    if (number != nullptr && *number >= 0 && *number <= static_cast<double>(LAST)) {
      seconds = static_cast<std::int64_t>(*number);
    }
    if (seconds) return seconds;
  }
  return {};
}

} // namespace com::velanto::connectivity::tools::report
