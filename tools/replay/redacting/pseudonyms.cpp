#include "tools/replay/redacting/pseudonyms.hpp"

#include <sodium.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <span>
#include <stdexcept>
#include <system_error>

#include "tools/options/exit_status.hpp"
#include "tools/record/kind.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t SHORTEST = 16; // characters
constexpr std::int64_t MAX_DAYS = 3650;
constexpr std::int64_t NANOSECONDS_A_DAY = std::int64_t{86'400} * 1'000'000'000;

constexpr std::array<std::string_view, 11> WORDS = {
    "ACKNOWLEDGED", "ACTIVE", "CLEARED", "CRITICAL",   "EXECUTING", "FAILED",
    "MAJOR",        "MINOR",  "PENDING", "SUCCESSFUL", "WARNING"};

// Neither x nor letters that are easily taken for others. The first half begins no number: neither
// inf nor nan.
constexpr std::string_view LETTERS = "abcdefghjkmpqrstnuvwyz0123456789";
static_assert(LETTERS.size() == 32, "the lower five bits of a byte choose one");

enum class Numeric { NO, AT_ITS_BEGIN, WHOLLY };

Numeric numericPartOf(const std::string& text) {
  if (text.find_first_of("xX") != std::string::npos) return Numeric::NO;
  char* end = nullptr;
  std::strtod(text.c_str(), &end);
  if (end == text.c_str()) return Numeric::NO;
  return end == text.c_str() + text.size() ? Numeric::WHOLLY : Numeric::AT_ITS_BEGIN;
}

// The number that the `count` digits of `text` from `at` on have; nothing if one is no digit.
std::optional<int> numberAt(std::string_view text, std::size_t at, std::size_t count) {
  int number = 0;
  for (const char c : text.substr(at, count)) {
    if (c < '0' || c > '9') return {};
    number = number * 10 + (c - '0');
  }
  return number;
}

// The day of a text like 2024-05-14T06:02:11, with or without fraction and zone; nothing for any
// other. The codec ignores what comes after a zone, which may be anything: not here.
std::optional<std::chrono::sys_days> dayOf(std::string_view text) {
  constexpr std::string_view FORM = "dddd-dd-ddTdd:dd:dd";
  constexpr std::size_t LONGEST = FORM.size() + 16;
  if (text.size() < FORM.size() || text.size() > LONGEST) return {};
  if (text.find_first_not_of("0123456789.:+-Zz", FORM.size()) != std::string_view::npos) return {};
  for (std::size_t i = 0; i < FORM.size(); ++i) {
    if (FORM[i] == 'd' ? !numberAt(text, i, 1) : text[i] != FORM[i]) return {};
  }
  const auto part = [text](std::size_t at, std::size_t count) {
    return *numberAt(text, at, count);
  };
  const int month = part(5, 2);
  const int day = part(8, 2);
  if (month < 1 || month > 12 || day < 1 || day > 31) return {};
  const std::chrono::year_month first(std::chrono::year(part(0, 4)),
                                      std::chrono::month(static_cast<unsigned>(month)));
  return std::chrono::sys_days(first / 1) + std::chrono::days(day - 1);
}

// Hashes the content of the file; returns its size in bytes.
std::size_t readKey(const std::string& path, std::span<unsigned char> key) {
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::array<char, 4096> piece{};
  std::size_t size = 0;
  crypto_generichash_state state;
  crypto_generichash_init(&state, nullptr, 0, key.size());
  do {
    file.read(piece.data(), piece.size());
    crypto_generichash_update(&state, reinterpret_cast<const unsigned char*>(piece.data()),
                              static_cast<unsigned long long>(file.gcount()));
    size += static_cast<std::size_t>(file.gcount());
  } while (file);
  crypto_generichash_final(&state, key.data(), key.size());
  sodium_memzero(piece.data(), piece.size());
  sodium_memzero(&state, sizeof state);
  if (!file.is_open() || file.bad()) {
    throw ReplayError(EXIT_IO, path + ": " + std::generic_category().message(errno));
  }
  return size;
}

} // namespace

Pseudonyms::Pseudonyms(const std::optional<std::string>& key_file) {
  if (sodium_init() < 0) throw std::runtime_error("the library for pseudonyms does not start");
  if (!key_file) {
    randombytes_buf(key_.data(), key_.size());
  } else if (readKey(*key_file, key_) < MIN_KEY) {
    throw ReplayError(EXIT_USAGE,
                      *key_file + ": a key has at least " + std::to_string(MIN_KEY) + " bytes");
  }
  const hash_t hash = hashOf(std::string_view("\0days", 5)); // no text of a message has a NUL
  days_ = -1 - (hash[0] + 256 * hash[1]) % MAX_DAYS;
}

Pseudonyms::~Pseudonyms() { sodium_memzero(key_.data(), key_.size()); }

Pseudonyms::hash_t Pseudonyms::hashOf(std::string_view text) const noexcept {
  hash_t hash{};
  crypto_generichash(hash.data(), hash.size(), reinterpret_cast<const unsigned char*>(text.data()),
                     text.size(), key_.data(), key_.size());
  return hash;
}

// Few enough for a double and for an integer of 64 bits, many enough that no two texts share them.
std::string Pseudonyms::digitsFor(std::string_view text) const {
  constexpr std::uint64_t LEAST = 100'000'000'000'000;
  const hash_t hash = hashOf(text);
  std::uint64_t number = 0;
  std::memcpy(&number, hash.data(), sizeof number);
  std::string digits = std::to_string(LEAST + number % (9 * LEAST));
  if (text.starts_with('-')) digits.insert(digits.begin(), '-');
  return digits;
}

std::string Pseudonyms::ofText(std::string_view text) const {
  if (text.empty() || std::find(WORDS.begin(), WORDS.end(), text) != WORDS.end()) {
    return std::string(text);
  }
  const Numeric numeric = numericPartOf(std::string(text));
  if (numeric == Numeric::WHOLLY) return digitsFor(text);
  const hash_t hash = hashOf(text);
  std::string result(std::clamp(text.size(), SHORTEST, hash.size()), '\0');
  std::transform(result.begin(), result.end(), hash.begin(), result.begin(),
                 [](char, unsigned char byte) { return LETTERS[byte % LETTERS.size()]; });
  result.front() = numeric == Numeric::NO ? LETTERS[hash[0] % (LETTERS.size() / 2)]
                                          : static_cast<char>('1' + hash[0] % 9);
  return result;
}

std::string Pseudonyms::ofPath(std::string_view path) const {
  const Kind kind = kindOfPath(path);
  std::string result;
  for (int segment = 0;; ++segment) {
    const std::size_t end = std::min(path.find('/'), path.size());
    std::string_view text = path.substr(0, end);
    if (segment == 2 && kind != Kind::OTHER) {
      const std::string_view word = nameOf(kind);
      result += word;
      text.remove_prefix(word.size());
    }
    result += ofText(text);
    if (end == path.size()) return result;
    result += '/';
    path.remove_prefix(end + 1);
  }
}

std::string Pseudonyms::ofNumber(std::string_view json) const {
  const bool is_double = json.find_first_of(".eE") != std::string_view::npos;
  return digitsFor(json) + (is_double ? ".0" : "");
}

std::string Pseudonyms::ofBits(std::string_view hex) const {
  constexpr std::string_view DIGITS = "0123456789abcdef";
  const hash_t hash = hashOf(hex);
  std::string result;
  for (std::size_t i = 0; i < 16; ++i) result += DIGITS[hash.at(i) % DIGITS.size()];
  return result;
}

std::string Pseudonyms::ofBytes(std::string_view base64, bool utf8) const {
  if (base64.empty()) return "";
  const hash_t hash = hashOf(base64);
  std::string result = utf8 ? "" : "////"; // three bytes of ones
  for (std::size_t i = 0; i < SHORTEST; ++i) result += LETTERS[hash.at(i) % LETTERS.size()];
  return result;
}

std::optional<std::string> Pseudonyms::ofTimestamp(std::string_view text) const {
  constexpr std::size_t DATE = 10; // characters
  const std::optional<std::chrono::sys_days> day = dayOf(text);
  if (!day) return {};
  const std::chrono::year_month_day date(*day + std::chrono::days(days_));
  const int year = static_cast<int>(date.year());
  if (year < 0) return {};
  std::array<char, 40> shown{};
  std::snprintf(shown.data(), shown.size(), "%04d-%02u-%02u", year,
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  return std::string(shown.data()).append(text.substr(DATE));
}

std::int64_t Pseudonyms::ofTime(std::int64_t nanoseconds) const noexcept {
  return nanoseconds + days_ * NANOSECONDS_A_DAY;
}

} // namespace com::velanto::connectivity::tools
