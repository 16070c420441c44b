#include "tools/host/elf_file.hpp"

#include <elf.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>

#include "identity/build_name.hpp"

namespace com::velanto::connectivity::tools {

namespace {

#ifdef __aarch64__
constexpr Elf64_Half MACHINE = EM_AARCH64;
constexpr const char* NOT_FOR_MACHINE = "not for aarch64";
#else
constexpr Elf64_Half MACHINE = EM_X86_64;
constexpr const char* NOT_FOR_MACHINE = "not for x86-64";
#endif

[[noreturn]] void failBeyondTheEnd(const char* what) {
  throw MalformedElf(std::string(what) + " is beyond the file's end");
}

// `address` + `by`, which a damaged file may have past the end of all addresses.
std::uint64_t shifted(std::uint64_t address, std::uint64_t by, const char* what) {
  if (by > UINT64_MAX - address) failBeyondTheEnd(what);
  return address + by;
}

class Reader {
 public:
  explicit Reader(std::span<const std::byte> file) : file_(file) {}

  elf_file_t read() {
    readHeader();
    readSegments();
    readDynamicSection();
    readNames();
    readSymbols();
    for (const Elf64_Phdr& segment : notes_) readNotes(segment);
    return std::move(result_);
  }

 private:
  void readHeader();
  void readSegments();
  void readDynamicSection();
  void noteEntry(const Elf64_Dyn& entry);
  void readNames();
  void readSymbols();
  void readNotes(const Elf64_Phdr& segment);
  void takeNote(std::string_view owner, std::uint32_t type, std::string_view content);
  [[nodiscard]] std::uint64_t countSymbols() const;
  [[nodiscard]] std::uint64_t countByGnuHash() const;

  // The object of type T at an offset of the file.
  template <class T>
  [[nodiscard]] T at(std::uint64_t offset, const char* what) const {
    static_assert(std::is_trivially_copyable_v<T>);
    if (offset > file_.size() || file_.size() - offset < sizeof(T)) {
      failBeyondTheEnd(what);
    }
    T object{};
    std::memcpy(&object, file_.data() + offset, sizeof object);
    return object;
  }

  // The object at an address of the loaded library.
  template <class T>
  [[nodiscard]] T loaded(std::uint64_t address, const char* what) const {
    return at<T>(offsetOf(address, what), what);
  }
  // Element `index` of an array at an address.
  template <class T>
  [[nodiscard]] T element(std::uint64_t address, std::uint64_t index, const char* what) const {
    if (index > file_.size()) failBeyondTheEnd(what);
    return loaded<T>(shifted(address, index * sizeof(T), what), what);
  }
  [[nodiscard]] std::uint64_t offsetOf(std::uint64_t address, const char* what) const;
  [[nodiscard]] std::string name(std::uint64_t offset) const;
  // So many bytes of the file.
  [[nodiscard]] std::string_view bytes(std::uint64_t offset, std::uint64_t size,
                                       const char* what) const {
    if (offset > file_.size() || file_.size() - offset < size) failBeyondTheEnd(what);
    return {reinterpret_cast<const char*>(file_.data()) + offset, size};
  }

  std::span<const std::byte> file_;
  Elf64_Ehdr header_{};
  std::vector<Elf64_Phdr> segments_; // loaded segments
  std::vector<Elf64_Phdr> notes_;
  std::optional<Elf64_Phdr> dynamic_;
  std::vector<std::uint64_t> needed_names_;
  std::vector<std::uint64_t> run_path_names_;
  std::optional<std::uint64_t> soname_name_;
  std::optional<std::uint64_t> strings_;
  std::uint64_t strings_size_ = 0;
  std::optional<std::uint64_t> symbols_;
  std::optional<std::uint64_t> hash_;
  std::optional<std::uint64_t> gnu_hash_;
  elf_file_t result_;
};

void Reader::readHeader() {
  if (file_.size() < SELFMAG || std::memcmp(file_.data(), ELFMAG, SELFMAG) != 0) {
    throw NoElf("no ELF file");
  }
  header_ = at<Elf64_Ehdr>(0, "the header");
  if (header_.e_ident[EI_CLASS] != ELFCLASS64 || header_.e_ident[EI_DATA] != ELFDATA2LSB ||
      header_.e_machine != MACHINE) {
    throw MalformedElf(NOT_FOR_MACHINE);
  }
  if (header_.e_type != ET_DYN) throw MalformedElf("no shared object");
}

void Reader::readSegments() {
  if (header_.e_phnum != 0 && header_.e_phentsize != sizeof(Elf64_Phdr)) {
    throw MalformedElf("program headers of an unknown size");
  }
  for (std::uint64_t i = 0; i < header_.e_phnum; ++i) {
    if (header_.e_phoff > file_.size()) throw MalformedElf("no program headers in the file");
    const auto segment =
        at<Elf64_Phdr>(header_.e_phoff + i * sizeof(Elf64_Phdr), "a program header");
    if (segment.p_type == PT_LOAD) segments_.push_back(segment);
    if (segment.p_type == PT_DYNAMIC) dynamic_ = segment;
    if (segment.p_type == PT_NOTE) notes_.push_back(segment);
  }
  if (!dynamic_) throw MalformedElf("no dynamic section");
}

void Reader::readDynamicSection() {
  const std::uint64_t count = dynamic_->p_filesz / sizeof(Elf64_Dyn);
  for (std::uint64_t i = 0; i < count; ++i) {
    if (dynamic_->p_offset > file_.size()) break; // the next line reports it
    const auto entry =
        at<Elf64_Dyn>(dynamic_->p_offset + i * sizeof(Elf64_Dyn), "the dynamic section");
    if (entry.d_tag == DT_NULL) return;
    noteEntry(entry);
  }
  throw MalformedElf("the dynamic section has no end");
}

void Reader::noteEntry(const Elf64_Dyn& entry) {
  switch (entry.d_tag) {
    case DT_NEEDED:
      needed_names_.push_back(entry.d_un.d_val);
      break;
    case DT_RPATH:
    case DT_RUNPATH:
      run_path_names_.push_back(entry.d_un.d_val);
      break;
    case DT_SONAME:
      soname_name_ = entry.d_un.d_val;
      break;
    case DT_STRTAB:
      strings_ = entry.d_un.d_ptr;
      break;
    case DT_STRSZ:
      strings_size_ = entry.d_un.d_val;
      break;
    case DT_SYMTAB:
      symbols_ = entry.d_un.d_ptr;
      break;
    case DT_HASH:
      hash_ = entry.d_un.d_ptr;
      break;
    case DT_GNU_HASH:
      gnu_hash_ = entry.d_un.d_ptr;
      break;
    default:
      break;
  }
}

// Everything but the symbols' own names.
void Reader::readNames() {
  for (const std::uint64_t offset : needed_names_) result_.needed.push_back(name(offset));
  for (const std::uint64_t offset : run_path_names_) result_.run_paths.push_back(name(offset));
  if (soname_name_) result_.soname = name(*soname_name_);
}

void Reader::readSymbols() {
  if (!symbols_) throw MalformedElf("no symbol table");
  const std::uint64_t count = countSymbols();
  for (std::uint64_t i = 1; i < count; ++i) { // the first one is reserved
    const auto symbol = element<Elf64_Sym>(*symbols_, i, "the symbol table");
    if (ELF64_ST_BIND(symbol.st_info) == STB_LOCAL) continue;
    if (symbol.st_shndx == SHN_UNDEF) {
      result_.undefined.push_back(name(symbol.st_name));
    } else {
      result_.exported.push_back({name(symbol.st_name), ELF64_ST_TYPE(symbol.st_info) == STT_FUNC});
    }
  }
}

//   0 owner's size (4)   4 content's size (4)   8 type (4)   12 owner, content; each aligned
void Reader::readNotes(const Elf64_Phdr& segment) {
  const char* const what = "a note";
  const std::uint64_t alignment = segment.p_align == 8 ? 8 : 4;
  const auto aligned = [&](std::uint64_t size) {
    return (size + alignment - 1) / alignment * alignment;
  };
  static_cast<void>(bytes(segment.p_offset, segment.p_filesz, what));
  const std::uint64_t end = segment.p_offset + segment.p_filesz;
  for (std::uint64_t at_note = segment.p_offset; at_note < end;) {
    const auto note = at<Elf64_Nhdr>(at_note, what);
    const std::uint64_t owner = at_note + sizeof note;
    const std::uint64_t content = owner + aligned(note.n_namesz);
    takeNote(bytes(owner, note.n_namesz, what), note.n_type, bytes(content, note.n_descsz, what));
    at_note = content + aligned(note.n_descsz);
  }
}

void Reader::takeNote(std::string_view owner, std::uint32_t type, std::string_view content) {
  const auto owned_by = [owner](const char* name) {
    return owner.substr(0, owner.find('\0')) == name;
  };
  if (owned_by(ELF_NOTE_GNU) && type == NT_GNU_BUILD_ID) {
    for (const char c : content) {
      constexpr const char* DIGITS = "0123456789abcdef";
      result_.build_id += {DIGITS[static_cast<unsigned char>(c) >> 4], DIGITS[c & 15]};
    }
  }
  if (!owned_by(BUILD_NOTE_OWNER)) return;
  const std::string_view text = content.substr(0, content.find('\0'));
  const bool printable =
      std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
  if (printable) result_.build_name = text;
}

// The file does not say it; the hash tables, which hold every symbol of a lookup, do.
std::uint64_t Reader::countSymbols() const {
  if (hash_) return element<std::uint32_t>(*hash_, 1, "the hash table");
  if (gnu_hash_) return countByGnuHash();
  throw MalformedElf("no hash table of symbols");
}

//   0 buckets (4)   4 first hashed symbol (4)   8 filter words (4)   12 shift (4)
//   16 filter (8 each)   then buckets (4 each): a chain's first symbol
//   then chains (4 each), one entry a hashed symbol; the lowest bit ends a chain
std::uint64_t Reader::countByGnuHash() const {
  const char* const what = "the hash table";
  const auto buckets = element<std::uint32_t>(*gnu_hash_, 0, what);
  const auto first = element<std::uint32_t>(*gnu_hash_, 1, what);
  const auto filters = element<std::uint32_t>(*gnu_hash_, 2, what);
  const std::uint64_t bucket_table = shifted(*gnu_hash_, 16 + std::uint64_t{filters} * 8, what);
  const std::uint64_t chain_table = shifted(bucket_table, std::uint64_t{buckets} * 4, what);
  std::uint64_t last = 0;
  for (std::uint64_t i = 0; i < buckets; ++i) {
    last = std::max<std::uint64_t>(last, element<std::uint32_t>(bucket_table, i, what));
  }
  if (last == 0) return first; // no exports
  if (last < first) throw MalformedElf("a hash chain begins before the hashed symbols");
  while ((element<std::uint32_t>(chain_table, last - first, what) & 1) == 0) ++last;
  return last + 1;
}

std::uint64_t Reader::offsetOf(std::uint64_t address, const char* what) const {
  for (const Elf64_Phdr& segment : segments_) {
    if (address < segment.p_vaddr || address - segment.p_vaddr >= segment.p_filesz) continue;
    const std::uint64_t within = address - segment.p_vaddr;
    if (segment.p_offset <= file_.size() && within <= file_.size() - segment.p_offset) {
      return segment.p_offset + within;
    }
  }
  failBeyondTheEnd(what);
}

std::string Reader::name(std::uint64_t offset) const {
  if (!strings_) throw MalformedElf("no table of names");
  if (offset >= strings_size_) throw MalformedElf("a name is beyond the table of names");
  const std::uint64_t start = offsetOf(shifted(*strings_, offset, "a name"), "a name");
  const std::uint64_t limit = std::min<std::uint64_t>(strings_size_ - offset, file_.size() - start);
  const auto* const text = reinterpret_cast<const char*>(file_.data() + start);
  const std::size_t length = strnlen(text, limit);
  if (length == limit) throw MalformedElf("a name has no end");
  return {text, length};
}

} // namespace

elf_file_t readElf(std::span<const std::byte> file) { return Reader(file).read(); }

elf_file_t readElfFile(const std::string& path) {
  const std::string content = contentOfFile(path);
  return readElf(std::as_bytes(std::span(content)));
}

std::string contentOfFile(const std::string& path) {
  errno = 0;
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream content;
  if (stream.peek() != std::ifstream::traits_type::eof()) content << stream.rdbuf();
  if (!stream.is_open() || stream.bad()) {
    throw std::runtime_error(path + ": " + std::generic_category().message(errno));
  }
  return std::move(content).str();
}

} // namespace com::velanto::connectivity::tools
