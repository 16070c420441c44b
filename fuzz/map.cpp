// Maps: any sequence of operations leaves them equal to their model, slot by slot, and leaks no
// block.
//
//   input   byte: the hash of strings; the rest: a program of tests/value/map_operations.hpp
#include <array>
#include <cstdint>
#include <span>

#include "fuzz/finding.hpp"
#include "tests/value/map_operations.hpp"

namespace fuzz = com::velanto::connectivity::fuzz;
namespace model = com::velanto::connectivity::test::model;

namespace {

std::uint64_t collidingHash(const char* text, std::uint64_t seed) {
  std::uint64_t sum = seed;
  for (; *text != '\0'; ++text) sum = sum * 31 + static_cast<unsigned char>(*text);
  return sum % 4; // the numbers of free and deleted slots among them
}

std::uint64_t topmostHash(const char* text, std::uint64_t) {
  return UINT64_MAX - static_cast<unsigned char>(*text) % 7;
}

// Null: the host's own.
constexpr std::array<standin_string_hash_t, 3> HASHES = {nullptr, collidingHash, topmostHash};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  standin_set_string_hash(HASHES[data[0] % HASHES.size()]);
  const std::int64_t live_before = standin_live_blocks_total();
  {
    model::MapOperations maps(std::span(data, size).subspan(1));
    fuzz::requireNone(maps.run(), "map and model");
  }
  fuzz::requireNone(
      model::differing("the number of blocks left", standin_live_blocks_total(), live_before),
      "memory");
  model::lasting_texts().clear();
  return 0;
}
