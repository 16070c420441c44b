// A shared library's file as the loader sees it, read without loading it:
//
//   (1) the header: 64-bit, little-endian, this program's machine, a shared object
//   (2) the program headers: where the file's bytes lie in memory, and the dynamic section
//   (3) the dynamic section: needed libraries, soname, run paths, and where the tables are
//   (4) the hash tables: how many symbols there are
//   (5) the symbols: names that the library exports, and names that it asks for
//   (6) the notes: which build it is
//
// Does not use section headers: a stripped library need not have them. Checks every offset and size
// against the file first, so a damaged file is an error and nothing worse.
#ifndef VLT_TOOLS_HOST_ELF_FILE_HPP
#define VLT_TOOLS_HOST_ELF_FILE_HPP

#include <cstddef>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace com::velanto::connectivity::tools {

// The file is no such library, or damaged; what() has the place, without a full stop.
class MalformedElf : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// It is no ELF file at all.
class NoElf : public MalformedElf {
 public:
  using MalformedElf::MalformedElf;
};

struct exported_t {
  std::string name;
  bool function;
};

struct elf_file_t {
  std::optional<std::string> soname;
  std::vector<std::string> needed;    // in the order of loading
  std::vector<std::string> run_paths; // of either kind
  std::vector<exported_t> exported;   // in the order of the table
  std::vector<std::string> undefined;
  std::string build_id;   // the linker's, as hexadecimal digits; empty: none
  std::string build_name; // as in identity/build_name.hpp, of printable ASCII; empty: none
};

[[nodiscard]] elf_file_t readElf(std::span<const std::byte> file);

// The same for the file at `path`; std::runtime_error when reading it fails.
[[nodiscard]] elf_file_t readElfFile(const std::string& path);

// All bytes of a file. Throws std::runtime_error "PATH: reason".
[[nodiscard]] std::string contentOfFile(const std::string& path);

} // namespace com::velanto::connectivity::tools

#endif
