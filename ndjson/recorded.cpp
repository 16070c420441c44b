#include "ndjson/recorded.hpp"

#include <charconv>

namespace com::velanto::connectivity {

namespace {

// Takes tokens off the begin of a text; false when another one is there.
class Tokens {
 public:
  explicit Tokens(std::string_view text) noexcept : text_(text) {}

  bool take(std::string_view token) {
    skipSpace();
    if (!text_.starts_with(token)) return false;
    text_.remove_prefix(token.size());
    return true;
  }
  template <class Integer>
  bool takeNumber(std::string_view name, Integer& number) {
    if (!take(name) || !take(":")) return false;
    skipSpace();
    const bool is_integer = !text_.empty() && text_[0] >= '0' && text_[0] <= '9';
    const std::from_chars_result end = std::from_chars(text_.begin(), text_.end(), number);
    const auto size = static_cast<std::size_t>(end.ptr - text_.begin());
    if (!is_integer || end.ec != std::errc() || (text_[0] == '0' && size > 1)) return false;
    text_.remove_prefix(size);
    return true;
  }
  bool takeDirection(recorded_t::Direction& direction) {
    if (!take(R"("direction")") || !take(":")) return false;
    const bool is_host = take(R"("host")");
    direction = is_host ? recorded_t::Direction::HOST : recorded_t::Direction::TRANSPORT;
    return is_host || take(R"("transport")");
  }

 private:
  void skipSpace() {
    while (text_.starts_with(' ') || text_.starts_with('\t')) text_.remove_prefix(1);
  }

  std::string_view text_;
};

} // namespace

std::optional<recorded_t> recordedIn(std::string_view line) {
  Tokens tokens(line);
  recorded_t result;
  const bool is_whole = tokens.take("{") && tokens.take(R"("recorded")") && tokens.take(":") &&
                        tokens.take("{") && tokens.takeNumber(R"("time")", result.time) &&
                        tokens.take(",") && tokens.takeNumber(R"("number")", result.number) &&
                        tokens.take(",") && tokens.takeNumber(R"("batch")", result.batch) &&
                        tokens.take(",") && tokens.takeNumber(R"("place")", result.place) &&
                        tokens.take(",") && tokens.takeNumber(R"("of")", result.of) &&
                        tokens.take(",") && tokens.takeDirection(result.direction) &&
                        tokens.take("}");
  return is_whole ? std::optional(result) : std::nullopt;
}

} // namespace com::velanto::connectivity
