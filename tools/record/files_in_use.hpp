// Every file of a run has one use. Compares files by what paths and descriptors lead to, not by
// their names: hard links and links of other kinds are the file, and a file that does not exist yet
// is its folder and its name. Pipes, devices and terminals may have any number of uses.
#ifndef VLT_TOOLS_RECORD_FILES_IN_USE_HPP
#define VLT_TOOLS_RECORD_FILES_IN_USE_HPP

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <tuple>

namespace com::velanto::connectivity::tools {

class FilesInUse {
 public:
  // The run reads the file; "-" is standard input.
  void read(const std::string& path);
  // Standard output and standard error, which may share a file. Throws ReplayError with EXIT_USAGE
  // when one leads to a file that the run reads; standard error then leads elsewhere.
  void writeStreams();
  // The run writes the file. Throws ReplayError with EXIT_USAGE when it has another use.
  void write(const std::string& path);

 private:
  using identity_t = std::tuple<dev_t, ino_t, std::string>; // the name of a file to be, in a folder
  struct use_t {
    std::string path;
    bool is_read;
  };

  void writeStream(int descriptor, const char* name);
  [[nodiscard]] static std::optional<identity_t> identityOf(const std::string& path);
  [[nodiscard]] static std::optional<identity_t> identityOf(int descriptor);

  std::map<identity_t, use_t> uses_;
};

} // namespace com::velanto::connectivity::tools

#endif
