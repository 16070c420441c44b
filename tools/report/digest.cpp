#include "tools/report/digest.hpp"

#include <sodium.h>

#include <array>
#include <fstream>

namespace com::velanto::connectivity::tools::report {

using hash_t = std::array<unsigned char, crypto_hash_sha256_BYTES>;

std::string sha256Base64(std::string_view text) {
  hash_t hash{};
  crypto_hash_sha256(hash.data(), reinterpret_cast<const unsigned char*>(text.data()), text.size());
  std::array<char, sodium_base64_ENCODED_LEN(hash_t().size(), sodium_base64_VARIANT_ORIGINAL)>
      digits{};
  return sodium_bin2base64(digits.data(), digits.size(), hash.data(), hash.size(),
                           sodium_base64_VARIANT_ORIGINAL);
}

file_digest_t digestOf(const std::string& path) {
  constexpr std::size_t PIECE = std::size_t{64} << 10; // bytes
  std::ifstream file(path, std::ios::binary);
  if (!file) return {};
  file_digest_t digest;
  crypto_hash_sha256_state state;
  crypto_hash_sha256_init(&state);
  std::string piece(PIECE, '\0');
  while (file.read(piece.data(), PIECE) || file.gcount() > 0) {
    const auto size = static_cast<std::size_t>(file.gcount());
    digest.size += size;
    crypto_hash_sha256_update(&state, reinterpret_cast<const unsigned char*>(piece.data()), size);
  }
  hash_t hash{};
  crypto_hash_sha256_final(&state, hash.data());
  std::array<char, 2 * hash_t().size() + 1> digits{};
  digest.sha256 = sodium_bin2hex(digits.data(), digits.size(), hash.data(), hash.size());
  return digest;
}

} // namespace com::velanto::connectivity::tools::report
