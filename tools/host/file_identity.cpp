#include "tools/host/file_identity.hpp"

#include <sodium.h>

#include <array>
#include <span>

#include "tools/host/elf_file.hpp"

namespace com::velanto::connectivity::tools {

file_identity_t identityOf(const std::string& path) {
  const std::string content = contentOfFile(path);
  file_identity_t identity{path, content.size(), {}, {}, {}};
  std::array<unsigned char, crypto_hash_sha256_BYTES> hash{};
  crypto_hash_sha256(hash.data(), reinterpret_cast<const unsigned char*>(content.data()),
                     content.size());
  std::array<char, 2 * hash.size() + 1> digits{};
  identity.sha256 = sodium_bin2hex(digits.data(), digits.size(), hash.data(), hash.size());
  try {
    const elf_file_t file = readElf(std::as_bytes(std::span(content)));
    identity.build_id = file.build_id;
    identity.build_name = file.build_name;
  } catch (const MalformedElf&) { // nobody can tell
  }
  return identity;
}

std::string buildText(const file_identity_t& file) {
  if (!file.build_name.empty()) return file.build_name;
  return file.build_id.empty() ? "SHA-256 " + file.sha256 : "build id " + file.build_id;
}

} // namespace com::velanto::connectivity::tools
