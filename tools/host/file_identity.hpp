// Which file is this: what tells one build of a plug-in library from another, for reports.
#ifndef VLT_TOOLS_HOST_FILE_IDENTITY_HPP
#define VLT_TOOLS_HOST_FILE_IDENTITY_HPP

#include <cstdint>
#include <string>

namespace com::velanto::connectivity::tools {

struct file_identity_t {
  std::string path{};       // as given
  std::uint64_t size = 0;   // bytes
  std::string sha256{};     // hexadecimal digits
  std::string build_id{};   // as in elf_file_t, empty for a file that is none
  std::string build_name{}; // the same
};

// Throws std::runtime_error "PATH: reason" when reading the file fails.
[[nodiscard]] file_identity_t identityOf(const std::string& path);

// For people: the name of the build, or of one without a name what else tells it.
[[nodiscard]] std::string buildText(const file_identity_t& file);

} // namespace com::velanto::connectivity::tools

#endif
