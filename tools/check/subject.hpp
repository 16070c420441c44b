// The library under test, and what the tool provides for it.
#ifndef VLT_TOOLS_CHECK_SUBJECT_HPP
#define VLT_TOOLS_CHECK_SUBJECT_HPP

#include <string>

namespace com::velanto::connectivity::tools::check {

// The plug-ins of this project.
enum class Plugin { CODEC, RECORDER };

struct subject_t {
  std::string path;
  Plugin plugin = Plugin::CODEC;
  std::string folder{}; // of one check alone, for the files of a recorder; empty for a codec
};

// The name of its class, which ends the names of a plug-in's functions.
[[nodiscard]] const char* classNameOf(Plugin plugin) noexcept;

// A recorder exports functions of its class; any other ELF file counts as a codec, faulty or not.
// Throws std::runtime_error "PATH: reason" when there is no such file.
[[nodiscard]] Plugin pluginIn(const std::string& path);

// A new folder among the system's temporary files, which it removes with its content.
class TemporaryFolder {
 public:
  // Throws std::system_error.
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  [[nodiscard]] const std::string& path() const noexcept { return path_; }

 private:
  std::string path_;
};

} // namespace com::velanto::connectivity::tools::check

#endif
