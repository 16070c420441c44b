// A built program or library as the loader sees it, read with readelf.
#ifndef VLT_TESTS_END_TO_END_BUILT_FILE_HPP
#define VLT_TESTS_END_TO_END_BUILT_FILE_HPP

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace com::velanto::connectivity::test {

// A name in the dynamic symbol table.
struct symbol_t {
  std::string binding; // "GLOBAL"
  bool defined;
  std::string name;
  std::string version; // the version asked for, "GLIBC_2.14"; empty for none
};

struct segment_t {
  std::uint64_t address;
  std::uint64_t size; // in memory
  std::string flags;  // "RW"
};

class BuiltFile {
 public:
  explicit BuiltFile(std::string path);

  [[nodiscard]] const std::vector<symbol_t>& symbols() const { return symbols_; }

  // The output of readelf with these options; throws std::runtime_error when it fails.
  [[nodiscard]] std::string readelf(const std::string& options) const;

  // Values and texts of all dynamic entries of one type: "NEEDED".
  [[nodiscard]] std::vector<std::string> dynamicEntries(const std::string& type) const;

  // All segments of one type: "GNU_STACK".
  [[nodiscard]] std::vector<segment_t> segments(const std::string& type) const;

  // The highest version of a family, "GLIBC_", that the file asks for, with the symbol; also
  // printed. Empty when it asks for none.
  [[nodiscard]] std::pair<std::vector<int>, std::string> highest(const std::string& family) const;

 private:
  std::string path_;
  std::vector<symbol_t> symbols_;
};

} // namespace com::velanto::connectivity::test

#endif
