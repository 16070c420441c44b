#include "recorder/recording_lines.hpp"

#include <charconv>
#include <cstring>
#include <ctime>

namespace com::velanto::connectivity::recorder {

namespace {

constexpr std::size_t LONGEST_NUMBER = 20;

char* put(char* at, std::string_view text) noexcept {
  std::memcpy(at, text.data(), text.size());
  return at + text.size();
}

char* put(char* at, std::string_view text, std::uint64_t number) noexcept {
  at = put(at, text);
  return std::to_chars(at, at + LONGEST_NUMBER, number).ptr;
}

// The number after the first `name` in the line; 0 without.
std::uint64_t numberAfter(std::string_view line, std::string_view name) noexcept {
  const std::size_t at = line.find(name);
  std::uint64_t number = 0;
  if (at == std::string_view::npos) return number;
  std::from_chars(line.data() + at + name.size(), line.data() + line.size(), number);
  return number;
}

} // namespace

char* writeRemark(char* at, const remark_t& remark) noexcept {
  at = put(at, R"({"recorded":{"time":)", remark.time);
  at = put(at, R"(,"number":)", remark.number);
  at = put(at, R"(,"batch":)", remark.batch);
  at = put(at, R"(,"place":)", remark.place);
  at = put(at, R"(,"of":)", remark.of);
  at = put(at, R"(,"direction":")");
  at = put(at, DIRECTIONS[static_cast<std::size_t>(remark.direction)]);
  return put(at, R"("},)");
}

char* writeGap(char* at, const gap_t& gap) noexcept {
  at = put(at, R"({"recording":{"gap":{"first":)", gap.first);
  at = put(at, R"(,"last":)", gap.last);
  at = put(at, R"(,"lost":)", gap.lost);
  at = put(at, R"(,"reason":")");
  at = put(at, gap.reason);
  return put(at, "\"}}}\n");
}

char* writeFoot(char* at, std::uint64_t ended, const counts_t& counts, bool has_next) noexcept {
  at = put(at, R"({"recording":{"foot":{"ended":)", ended);
  at = put(at, R"(,"seen":)", counts.seen);
  at = put(at, R"(,"recorded":)", counts.recorded);
  at = put(at, R"(,"filtered":)", counts.filtered);
  at = put(at, R"(,"lost":)", counts.lost);
  if (has_next) at = put(at, R"(,"next":true)");
  return put(at, "}}}\n");
}

passage_t readPassage(std::string_view lines) noexcept {
  constexpr std::string_view GAP = R"({"recording":{"gap":)";
  constexpr std::string_view MESSAGE = R"({"recorded":)";
  passage_t passage;
  while (!lines.empty()) {
    const std::size_t size = lines.find('\n') + 1; // 0 after a last line without an end
    const std::string_view line = lines.substr(0, size == 0 ? lines.size() : size);
    lines.remove_prefix(line.size());
    std::uint64_t first = 0;
    if (line.starts_with(MESSAGE)) {
      ++passage.recorded;
      passage.last = first = numberAfter(line, R"("number":)");
    } else if (line.starts_with(GAP)) {
      first = numberAfter(line, R"("first":)");
      passage.last = numberAfter(line, R"("last":)");
      passage.lost += numberAfter(line, R"("lost":)");
    }
    if (passage.first == 0) passage.first = first;
  }
  return passage;
}

std::uint64_t timeNow() noexcept {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000U +
         static_cast<std::uint64_t>(now.tv_nsec);
}

} // namespace com::velanto::connectivity::recorder
