#include "ndjson/json_memory.hpp"

#include <rapidjson/internal/dtoa.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>

#include "ndjson/utf8.hpp"

namespace com::velanto::connectivity {

namespace {

constexpr std::size_t CHUNK = JsonMemory::SLACK;
constexpr std::string_view HEX_DIGITS = "0123456789abcdef";

template <class Word>
Word wordAt(const char* from) noexcept {
  Word word{};
  std::memcpy(&word, from, sizeof word);
  return word;
}

using chunk_t [[gnu::vector_size(CHUNK)]] = signed char;
using words_t = std::array<std::uint64_t, 2>;

static_assert(std::endian::native == std::endian::little, "byte i must be byte i of the words");

// The `size` bytes at `from`, 1 to 16, then zeros. Two loads that overlap take the place of a loop.
words_t load(const char* from, std::size_t size) noexcept {
  if (size == CHUNK) return wordAt<words_t>(from);
  std::uint64_t low = 0;
  std::uint64_t high = 0;
  if (size >= 8) {
    low = wordAt<std::uint64_t>(from);
    high = wordAt<std::uint64_t>(from + size - 8) >> 1U >> (8 * (16 - size) - 1);
  } else if (size >= 4) {
    low = wordAt<std::uint32_t>(from);
    low |= std::uint64_t{wordAt<std::uint32_t>(from + size - 4)} << (8 * (size - 4));
  } else {
    for (const std::size_t i : {std::size_t{0}, size / 2, size - 1}) {
      low |= std::uint64_t{wordAt<unsigned char>(from + i)} << (8 * i);
    }
  }
  return {low, high};
}

// The number of bytes before the first one that is a control character, a quote, a backslash or not
// ASCII.
std::size_t countPlain(chunk_t chunk) noexcept {
  // Bytes from 0x80 on are negative.
  const chunk_t special = (chunk < 0x20) | (chunk == '"') | (chunk == '\\');
  const auto [low, high] = std::bit_cast<words_t>(special);
  if (low != 0) return static_cast<std::size_t>(std::countr_zero(low)) / 8;
  return 8 + static_cast<std::size_t>(std::countr_zero(high)) / 8;
}

} // namespace

bool JsonMemory::text(std::string_view text) noexcept {
  char* const begin = at_;
  const char* from = text.data();
  const char* const end = from + text.size();
  // Room for the rest without escapes, and the quotes.
  if (!hasRoom(text.size() + 2)) return true;
  *at_++ = '"';
  while (from != end) {
    const std::size_t size = std::min(CHUNK, static_cast<std::size_t>(end - from));
    const words_t chunk = load(from, size);
    std::memcpy(at_, &chunk, sizeof chunk);
    const std::size_t plain = countPlain(std::bit_cast<chunk_t>(chunk)); // a zero is not plain
    from += plain;
    at_ += plain;
    if (plain == size) continue;
    if (static_cast<unsigned char>(*from) < 0x80) {
      escape(*from++);
      if (!hasRoom(static_cast<std::size_t>(end - from) + 1)) return true;
      continue;
    }
    // Text that is not ASCII comes in runs.
    while (from != end && static_cast<unsigned char>(*from) >= 0x80) {
      const std::size_t length = lengthOfCharacter({from, end});
      if (length == 0) {
        at_ = begin;
        return false;
      }
      for (const char* const next = from + length; from != next;) *at_++ = *from++;
    }
  }
  *at_++ = '"';
  return true;
}

void JsonMemory::escape(char c) noexcept {
  constexpr std::string_view LETTERS = "btn?fr"; // from code 8 on
  if (!hasRoom(6)) return;
  const auto code = static_cast<unsigned char>(c);
  *at_++ = '\\';
  if (code >= 0x20) {
    *at_++ = c;
  } else if (code >= 8 && code <= 13 && code != 11) {
    *at_++ = LETTERS[code - 8U];
  } else {
    at_ = std::copy_n("u00", 3, at_);
    *at_++ = HEX_DIGITS[code >> 4U];
    *at_++ = HEX_DIGITS[code & 15U];
  }
}

void JsonMemory::integer(std::int64_t content) noexcept {
  constexpr std::size_t LONGEST = 20;
  if (hasRoom(LONGEST)) at_ = std::to_chars(at_, at_ + LONGEST, content).ptr;
}

// A decimal m / 1000 reads as the quotient of the two, which the division gives, since both are
// exact; and no two decimals of 15 digits read as the same double.
bool JsonMemory::shortReal(double content) noexcept {
  const double magnitude = std::abs(content);
  if (!(magnitude < 1e12) || (content == 0 && std::signbit(content))) return false;
  // Without a call of the C library, as lround would be; the next line refuses a wrong guess.
  // NOLINTNEXTLINE(bugprone-incorrect-roundings)
  const auto thousandths = static_cast<std::int64_t>(magnitude * 1000 + 0.5);
  if (static_cast<double>(thousandths) / 1000 != magnitude) return false;
  const std::int64_t whole = thousandths / 1000;
  if (whole != 0 && thousandths % 100'000'000 == 0) return false; // 1e+05 is shorter
  if (!hasRoom(20)) return true;
  if (content < 0) *at_++ = '-';
  integer(whole);
  *at_++ = '.';
  auto decimals = static_cast<unsigned>(thousandths % 1000);
  do {
    *at_++ = static_cast<char>('0' + decimals / 100);
    decimals = decimals % 100 * 10;
  } while (decimals != 0);
  return true;
}

// The C++ library's own conversion would be the shortest, but it is one of GCC 11.
void JsonMemory::real(double content) noexcept {
  if (shortReal(content)) return;
  if (hasRoom(32)) at_ = rapidjson::internal::dtoa(content, at_);
}

void JsonMemory::bits(std::uint64_t content) noexcept {
  if (!hasRoom(18)) return;
  *at_++ = '"';
  for (unsigned shift = 64; shift > 0;) *at_++ = HEX_DIGITS[content >> (shift -= 4) & 15U];
  *at_++ = '"';
}

void JsonMemory::base64(const unsigned char* bytes, std::size_t size) noexcept {
  constexpr std::string_view DIGITS =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  if (!hasRoom((size + 2) / 3 * 4 + 2)) return;
  *at_++ = '"';
  for (std::size_t i = 0; i < size; i += 3) {
    const std::size_t count = std::min<std::size_t>(3, size - i);
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) group = group << 8U | (k < count ? bytes[i + k] : 0U);
    for (std::size_t k = 0; k < 4; ++k) {
      *at_++ = k <= count ? DIGITS[group >> (18 - 6 * k) & 63U] : '=';
    }
  }
  *at_++ = '"';
}

} // namespace com::velanto::connectivity
