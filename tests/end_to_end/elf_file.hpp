// A shared library as the file that the loader reads: segments, dynamic entries, dynamic symbols
// with the versions that they ask for, and the bytes behind an address. 64 bits, little-endian, with
// section headers, as the linker writes it.
#ifndef VLT_TESTS_END_TO_END_ELF_FILE_HPP
#define VLT_TESTS_END_TO_END_ELF_FILE_HPP

#include <elf.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace com::velanto::connectivity::test {

class ElfFile {
 public:
  struct symbol_t {
    std::string name;
    std::string version; // the one asked for, "GLIBC_2.14"; empty for none
    Elf64_Sym entry;
    [[nodiscard]] bool defined() const { return entry.st_shndx != SHN_UNDEF; }
  };

  // Throws std::runtime_error when `path` cannot be read or is no such file; all the other
  // functions throw std::out_of_range for a file that points outside itself.
  explicit ElfFile(const std::string& path);

  [[nodiscard]] std::vector<Elf64_Phdr> segments() const;
  [[nodiscard]] std::optional<Elf64_Phdr> segment(std::uint32_t type) const;

  // The values of all dynamic entries with that tag; for tags that name texts, the texts.
  [[nodiscard]] std::vector<std::uint64_t> dynamicValues(std::int64_t tag) const;
  [[nodiscard]] std::vector<std::string> dynamicTexts(std::int64_t tag) const;

  [[nodiscard]] std::vector<symbol_t> dynamicSymbols() const;

  // The bytes from a virtual address to the end of what the file holds of its segment.
  [[nodiscard]] std::vector<std::uint8_t> bytesAt(std::uint64_t address) const;

 private:
  template <class T>
  [[nodiscard]] T at(std::uint64_t offset) const;
  template <class T>
  [[nodiscard]] std::vector<T> table(std::uint64_t offset, std::uint64_t count) const;
  [[nodiscard]] std::string textAt(std::uint64_t offset) const;
  [[nodiscard]] std::optional<Elf64_Shdr> section(std::uint32_t type) const;
  [[nodiscard]] std::vector<std::string> versionNames() const;

  std::vector<std::uint8_t> bytes_;
};

} // namespace com::velanto::connectivity::test

#endif
