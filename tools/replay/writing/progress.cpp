#include "tools/replay/writing/progress.hpp"

#include <array>
#include <cmath>
#include <cstdio>

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::uint64_t MESSAGES_BETWEEN = 256; // looks at the clock
constexpr std::chrono::milliseconds TIME_BETWEEN{100};

} // namespace

void Progress::take(const record_t& record) {
  messages_ = record.number;
  if (record.number % MESSAGES_BETWEEN != 0) return;
  const clock_t::time_point now = clock_t::now();
  if (now - shown_ < TIME_BETWEEN) return;
  show(now);
}

void Progress::pause() {
  if (above_) show(clock_t::now());
}

void Progress::show(clock_t::time_point now) {
  shown_ = now;
  const std::string line = progressLine(messages_, now - start_, fraction_());
  terminal_.show(above_ ? above_() + line : line);
}

std::string progressLine(std::uint64_t messages, std::chrono::duration<double> elapsed,
                         std::optional<double> fraction) {
  const double seconds = elapsed.count();
  const double rate = seconds > 0 ? static_cast<double>(messages) / seconds : 0;
  std::array<char, 80> text{};
  if (!fraction || *fraction <= 0) {
    std::snprintf(text.data(), text.size(), "%llu messages, %.0f messages/s",
                  static_cast<unsigned long long>(messages), rate);
    return text.data();
  }
  const auto left = std::lround(seconds / *fraction - seconds);
  std::snprintf(text.data(), text.size(), "%3.0f %%, %.0f messages/s, %ld:%02ld left",
                *fraction * 100, rate, left / 60, left % 60);
  return text.data();
}

} // namespace com::velanto::connectivity::tools
