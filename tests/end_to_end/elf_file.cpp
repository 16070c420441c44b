#include "tests/end_to_end/elf_file.hpp"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace com::velanto::connectivity::test {

ElfFile::ElfFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  bytes_.assign(std::istreambuf_iterator<char>(file), {});
  if (bytes_.size() < sizeof(Elf64_Ehdr) || std::memcmp(bytes_.data(), ELFMAG, SELFMAG) != 0) {
    throw std::runtime_error("no ELF file: " + path);
  }
}

template <class T>
T ElfFile::at(std::uint64_t offset) const {
  if (offset > bytes_.size() || sizeof(T) > bytes_.size() - offset) {
    throw std::out_of_range("beyond the end of the file");
  }
  T value;
  std::memcpy(&value, bytes_.data() + offset, sizeof value);
  return value;
}

template <class T>
std::vector<T> ElfFile::table(std::uint64_t offset, std::uint64_t count) const {
  std::vector<T> entries;
  for (std::uint64_t i = 0; i < count; ++i) entries.push_back(at<T>(offset + i * sizeof(T)));
  return entries;
}

std::string ElfFile::textAt(std::uint64_t offset) const {
  std::string text;
  for (char c = at<char>(offset); c != '\0'; c = at<char>(++offset)) text.push_back(c);
  return text;
}

std::vector<Elf64_Phdr> ElfFile::segments() const {
  const auto head = at<Elf64_Ehdr>(0);
  return table<Elf64_Phdr>(head.e_phoff, head.e_phnum);
}

std::optional<Elf64_Phdr> ElfFile::segment(std::uint32_t type) const {
  for (const Elf64_Phdr& segment : segments()) {
    if (segment.p_type == type) return segment;
  }
  return std::nullopt;
}

std::optional<Elf64_Shdr> ElfFile::section(std::uint32_t type) const {
  const auto head = at<Elf64_Ehdr>(0);
  for (const auto& section : table<Elf64_Shdr>(head.e_shoff, head.e_shnum)) {
    if (section.sh_type == type) return section;
  }
  return std::nullopt;
}

std::vector<std::uint64_t> ElfFile::dynamicValues(std::int64_t tag) const {
  const Elf64_Shdr dynamic = section(SHT_DYNAMIC).value();
  std::vector<std::uint64_t> values;
  for (const auto& entry :
       table<Elf64_Dyn>(dynamic.sh_offset, dynamic.sh_size / sizeof(Elf64_Dyn))) {
    if (entry.d_tag == DT_NULL) break;
    if (entry.d_tag == tag) values.push_back(entry.d_un.d_val);
  }
  return values;
}

std::vector<std::string> ElfFile::dynamicTexts(std::int64_t tag) const {
  const auto head = at<Elf64_Ehdr>(0);
  const Elf64_Shdr dynamic = section(SHT_DYNAMIC).value();
  const auto names = at<Elf64_Shdr>(head.e_shoff + dynamic.sh_link * sizeof(Elf64_Shdr));
  std::vector<std::string> texts;
  for (const std::uint64_t value : dynamicValues(tag)) {
    texts.push_back(textAt(names.sh_offset + value));
  }
  return texts;
}

// The names of the versions asked for, by the numbers under which symbols refer to them.
std::vector<std::string> ElfFile::versionNames() const {
  std::vector<std::string> names(2); // 0 and 1: local, and without a version
  const auto needed = section(SHT_GNU_verneed);
  if (!needed) return names;
  const auto head = at<Elf64_Ehdr>(0);
  const auto texts = at<Elf64_Shdr>(head.e_shoff + needed->sh_link * sizeof(Elf64_Shdr));
  std::uint64_t library_at = needed->sh_offset;
  for (std::uint32_t i = 0; i < needed->sh_info; ++i) {
    const auto library = at<Elf64_Verneed>(library_at);
    std::uint64_t version_at = library_at + library.vn_aux;
    for (int j = 0; j < library.vn_cnt; ++j) {
      const auto version = at<Elf64_Vernaux>(version_at);
      names.resize(std::max<std::size_t>(names.size(), version.vna_other + 1U));
      names[version.vna_other] = textAt(texts.sh_offset + version.vna_name);
      version_at += version.vna_next;
    }
    library_at += library.vn_next;
  }
  return names;
}

std::vector<ElfFile::symbol_t> ElfFile::dynamicSymbols() const {
  constexpr unsigned HIDDEN = 0x8000;
  const auto head = at<Elf64_Ehdr>(0);
  const Elf64_Shdr symbols = section(SHT_DYNSYM).value();
  const auto texts = at<Elf64_Shdr>(head.e_shoff + symbols.sh_link * sizeof(Elf64_Shdr));
  const auto versions = section(SHT_GNU_versym);
  const std::vector<std::string> names = versionNames();
  std::vector<symbol_t> found;
  for (std::uint64_t i = 1; i < symbols.sh_size / sizeof(Elf64_Sym); ++i) {
    const auto entry = at<Elf64_Sym>(symbols.sh_offset + i * sizeof(Elf64_Sym));
    const unsigned version =
        versions ? at<Elf64_Half>(versions->sh_offset + i * sizeof(Elf64_Half)) & ~HIDDEN : 0U;
    found.push_back({textAt(texts.sh_offset + entry.st_name),
                     version < names.size() ? names[version] : "", entry});
  }
  return found;
}

std::vector<std::uint8_t> ElfFile::bytesAt(std::uint64_t address) const {
  for (const Elf64_Phdr& segment : segments()) {
    if (segment.p_type != PT_LOAD || address < segment.p_vaddr) continue;
    const std::uint64_t inside = address - segment.p_vaddr;
    if (inside >= segment.p_filesz) continue;
    return table<std::uint8_t>(segment.p_offset + inside, segment.p_filesz - inside);
  }
  throw std::out_of_range("no segment of the file holds the address");
}

} // namespace com::velanto::connectivity::test
