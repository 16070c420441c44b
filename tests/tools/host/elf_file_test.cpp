#include "tools/host/elf_file.hpp"

#include <elf.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

using tools::elf_file_t;
using tools::MalformedElf;
using tools::readElf;

using bytes_t = std::vector<std::byte>;

bytes_t contentOf(const char* path) {
  std::ifstream file(path, std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(file), {}};
  const auto* const first = reinterpret_cast<const std::byte*>(content.data());
  return {first, first + content.size()};
}

// Exactly as large as it is, so that the sanitizer sees a byte too far.
bytes_t frontOf(const bytes_t& whole, std::size_t size) {
  return {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)};
}

// True when it could read the file, false when it refused; anything else ends the test.
bool isRead(const bytes_t& file) {
  try {
    static_cast<void>(readElf(file));
    return true;
  } catch (const MalformedElf& e) {
    EXPECT_GT(std::strlen(e.what()), 5U);
    return false;
  }
}

class ElfFileTest : public ::testing::Test {
 protected:
  // Clang's linker makes both hash tables, and g++'s only the newer one, which this test needs.
  ElfFileTest() {
    std::size_t at = peek<Elf64_Phdr>(programHeader(PT_DYNAMIC)).p_offset;
    for (; peek<Elf64_Dyn>(at).d_tag != DT_NULL; at += sizeof(Elf64_Dyn)) {
      if (peek<Elf64_Dyn>(at).d_tag == DT_HASH) poke<std::int64_t>(at, DT_DEBUG);
    }
  }

  template <class T>
  void poke(std::size_t offset, T value) {
    std::memcpy(file_.data() + offset, &value, sizeof value);
  }
  template <class T>
  T peek(std::size_t offset) {
    T value{};
    std::memcpy(&value, file_.data() + offset, sizeof value);
    return value;
  }
  [[nodiscard]] std::string refusal() const {
    return errorOf([this] { static_cast<void>(readElf(file_)); });
  }
  // Of the first program header of a type.
  std::size_t programHeader(std::uint32_t type) {
    const auto header = peek<Elf64_Ehdr>(0);
    std::size_t at = header.e_phoff;
    while (peek<Elf64_Phdr>(at).p_type != type) at += sizeof(Elf64_Phdr);
    return at;
  }
  // Of the dynamic section's entry with a tag.
  std::size_t dynamicEntry(std::int64_t tag) {
    std::size_t at = peek<Elf64_Phdr>(programHeader(PT_DYNAMIC)).p_offset;
    while (peek<Elf64_Dyn>(at).d_tag != tag) at += sizeof(Elf64_Dyn);
    return at;
  }

  bytes_t file_ = contentOf(VLT_PLUGIN_PATH);
};

} // namespace

TEST_F(ElfFileTest, PluginIsReadAsItWasLinked) {
  const elf_file_t plugin = readElf(file_);
  EXPECT_EQ(plugin.soname, "libOstroviaNotifications2Codec.so");
  EXPECT_TRUE(plugin.run_paths.empty());
  EXPECT_EQ(plugin.exported.size(), 12U);
  for (const auto& symbol : plugin.exported) EXPECT_TRUE(symbol.function) << symbol.name;
  EXPECT_NE(std::find(plugin.needed.begin(), plugin.needed.end(), "libtvclient.so.10.15"),
            plugin.needed.end());
  EXPECT_NE(std::find(plugin.undefined.begin(), plugin.undefined.end(), "vlt_allocate_map"),
            plugin.undefined.end());
}

TEST_F(ElfFileTest, RunPathIsRead) {
  const elf_file_t plugin =
      tools::readElfFile(std::string(VLT_FAULTY_PLUGINS) + "/has_run_path.so");
  EXPECT_EQ(plugin.run_paths, std::vector<std::string>{"/opt/velanto/lib"});
}

TEST_F(ElfFileTest, OtherFilesAreRefused) {
  EXPECT_EQ(errorOf([] { static_cast<void>(readElf({})); }), "no ELF file");
  const bytes_t text(100, std::byte{'x'});
  EXPECT_EQ(errorOf([&] { static_cast<void>(readElf(text)); }), "no ELF file");
  EXPECT_EQ(errorOf([] { static_cast<void>(tools::readElfFile("/nowhere")); }),
            "/nowhere: No such file or directory");
}

TEST_F(ElfFileTest, OtherMachinesAndObjectsAreRefused) {
#ifdef __aarch64__
  const Elf64_Half other = EM_X86_64;
  const std::string not_for_this = "not for aarch64";
#else
  const Elf64_Half other = EM_AARCH64;
  const std::string not_for_this = "not for x86-64";
#endif
  const auto own = peek<Elf64_Half>(offsetof(Elf64_Ehdr, e_machine));
  poke<std::uint16_t>(offsetof(Elf64_Ehdr, e_type), ET_REL);
  EXPECT_EQ(refusal(), "no shared object");
  poke(offsetof(Elf64_Ehdr, e_machine), other);
  EXPECT_EQ(refusal(), not_for_this);
  poke(offsetof(Elf64_Ehdr, e_machine), own);
  poke<unsigned char>(EI_CLASS, ELFCLASS32);
  EXPECT_EQ(refusal(), not_for_this);
}

TEST_F(ElfFileTest, MissingPartsAreNamed) {
  const bytes_t whole = file_;
  poke<std::uint16_t>(offsetof(Elf64_Ehdr, e_phnum), 0);
  EXPECT_EQ(refusal(), "no dynamic section");
  file_ = whole;
  poke<std::int64_t>(dynamicEntry(DT_SYMTAB), DT_DEBUG);
  EXPECT_EQ(refusal(), "no symbol table");
  file_ = whole;
  poke<std::int64_t>(dynamicEntry(DT_STRTAB), DT_DEBUG);
  EXPECT_EQ(refusal(), "no table of names");
  file_ = whole;
  poke<std::int64_t>(dynamicEntry(DT_GNU_HASH), DT_DEBUG);
  EXPECT_EQ(refusal(), "no hash table of symbols");
  file_ = whole;
  poke<std::int64_t>(dynamicEntry(DT_NULL), DT_DEBUG);
  poke<std::uint64_t>(
      programHeader(PT_DYNAMIC) + offsetof(Elf64_Phdr, p_filesz),
      dynamicEntry(DT_GNU_HASH) + 16 - peek<Elf64_Phdr>(programHeader(PT_DYNAMIC)).p_offset);
  EXPECT_EQ(refusal(), "the dynamic section has no end");
}

TEST_F(ElfFileTest, OffsetsBeyondTheFileAreRefused) {
  const std::uint64_t far[] = {file_.size(), std::uint64_t{1} << 40, ~std::uint64_t{0},
                               ~std::uint64_t{0} - 8};
  const bytes_t whole = file_;
  for (const std::uint64_t address : far) {
    poke(offsetof(Elf64_Ehdr, e_phoff), address);
    EXPECT_FALSE(isRead(file_));
    file_ = whole;
    poke(programHeader(PT_DYNAMIC) + offsetof(Elf64_Phdr, p_offset), address);
    EXPECT_FALSE(isRead(file_));
    for (const std::int64_t tag : {DT_STRTAB, DT_SYMTAB, DT_GNU_HASH, DT_NEEDED, DT_SONAME}) {
      file_ = whole;
      poke(dynamicEntry(tag) + 8, address);
      EXPECT_FALSE(isRead(file_)) << tag;
    }
    file_ = whole;
  }
}

// A cut removes the table of symbols at the earliest, and the reader does not need the section
// headers at the end.
TEST_F(ElfFileTest, TruncatedAnywhereItIsReadOrRefused) {
  std::size_t refused = 0;
  const std::size_t step = file_.size() / 500 + 1; // each cut copies all that is before it
  for (std::size_t size = 0; size < file_.size(); size += step) {
    if (!isRead(frontOf(file_, size))) ++refused;
  }
  EXPECT_GT(refused, 10U);
}

TEST_F(ElfFileTest, DamagedAnywhereItIsReadOrRefused) {
  std::mt19937 dice(7);
  const bytes_t whole = file_;
  const std::size_t dynamic = peek<Elf64_Phdr>(programHeader(PT_DYNAMIC)).p_offset;
  const std::size_t notes = peek<Elf64_Phdr>(programHeader(PT_NOTE)).p_offset;
  const std::size_t hash = peek<Elf64_Dyn>(dynamicEntry(DT_GNU_HASH)).d_un.d_ptr;
  std::size_t refused = 0;
  for (int i = 0; i < 3000; ++i) {
    const std::size_t regions[] = {0, 64, dynamic, hash, notes, 64 + dice() % 4096};
    const std::size_t start = regions[dice() % 6];
    const std::size_t at = start + dice() % 256;
    file_[at] = static_cast<std::byte>(dice());
    file_[start + dice() % 256] = std::byte{0xff};
    if (!isRead(file_)) ++refused;
    std::copy_n(whole.begin() + static_cast<std::ptrdiff_t>(start), 256,
                file_.begin() + static_cast<std::ptrdiff_t>(start));
  }
  EXPECT_GT(refused, 300U);
}

} // namespace com::velanto::connectivity::test
