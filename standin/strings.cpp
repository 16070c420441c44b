// Strings: copies, and the hash that places string keys in tables.
//
// The hash:
//
// (1) Seed and length start the state.
// (2) Multiply and mix in each 8 bytes, little-endian, then the last 0 to 7, padded with zeros.
// (3) Two multiply-and-shift rounds spread every bit of the state over all 64.
//
// Each step is a bijection of the state. So strings of one length below 9 bytes never collide under
// one seed.
#include "standin/strings.hpp"

#include <atomic>
#include <bit>
#include <cstring>

#include "standin/accounting.hpp"
#include "standin/blocks.hpp"
#include "standin/interface.hpp"

namespace standin {

char* copyText(const char* text) noexcept {
  const std::size_t length = std::strlen(text);
  char* copy = makeString(length);
  if (copy != nullptr) std::memcpy(copy, text, length + 1);
  return copy;
}

namespace {

static_assert(std::endian::native == std::endian::little, "words are read as they are in memory");

// Odd, and so bijective factors, with about half of their bits set in no pattern.
constexpr uint64_t WORD_FACTOR = 0x9e3779b97f4a7c15;
constexpr uint64_t STATE_FACTOR = 0xd6e8feb86659fd93;
constexpr uint64_t LENGTH_FACTOR = 0xa0761d6478bd642f;

constexpr uint64_t mixIn(uint64_t state, uint64_t word) noexcept {
  return std::rotl(state ^ (word * WORD_FACTOR), 29) * STATE_FACTOR;
}

constexpr uint64_t finish(uint64_t state) noexcept {
  state = (state ^ (state >> 32)) * WORD_FACTOR;
  state = (state ^ (state >> 29)) * STATE_FACTOR;
  return state ^ (state >> 32);
}

template <typename Word>
uint64_t readWord(const char* bytes) noexcept {
  Word word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// The last 1 to 7 bytes as a word. Loads that overlap take the place of a copy of unknown size.
uint64_t readRest(const char* bytes, std::size_t count) noexcept {
  if (count >= 4) {
    return readWord<uint32_t>(bytes) | readWord<uint32_t>(bytes + count - 4) << (8 * (count - 4));
  }
  return readWord<uint8_t>(bytes) | readWord<uint8_t>(bytes + count / 2) << (8 * (count / 2)) |
         readWord<uint8_t>(bytes + count - 1) << (8 * (count - 1));
}

uint64_t ownHash(const char* text, uint64_t seed) {
  std::size_t left = std::strlen(text);
  uint64_t state = seed ^ (left * LENGTH_FACTOR);
  for (; left >= sizeof(uint64_t); left -= sizeof(uint64_t), text += sizeof(uint64_t)) {
    state = mixIn(state, readWord<uint64_t>(text));
  }
  if (left > 0) state = mixIn(state, readRest(text, left));
  return finish(state);
}

constinit std::atomic<standin_string_hash_t> string_hash{ownHash};

} // namespace

} // namespace standin

using namespace standin;

char* vlt_copy_string(const char* text) {
  countCall(STANDIN_COPY_STRING);
  return copyText(text == nullptr ? "" : text);
}

uint64_t vlt_hash_string(const char* text, uint64_t seed) {
  countCall(STANDIN_HASH_STRING);
  return string_hash.load(std::memory_order_relaxed)(text == nullptr ? "" : text, seed);
}

void standin_set_string_hash(standin_string_hash_t hash) {
  string_hash.store(hash == nullptr ? ownHash : hash, std::memory_order_relaxed);
}
