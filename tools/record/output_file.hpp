// A file that appears whole or not at all: a temporary file beside it takes its name when the run
// has ended well. Until then, and after Ctrl-C, kill -9 or on a full disk, the old file stays.
//
//   path                                   way
//   -                                      through standard output
//   /dev/stdout, /dev/stderr, /dev/fd/N    through the descriptor
//   a device, a pipe, a socket             through, as the data comes; on a terminal with escapes for
//                                          its control characters
//   a link                                 the file that it leads to is replaced, the link stays
//   any other                              .NAME.N beside it, renamed by commit; the new file keeps
//                                          the rights of the old one, and its owner where it may
#ifndef VLT_TOOLS_RECORD_OUTPUT_FILE_HPP
#define VLT_TOOLS_RECORD_OUTPUT_FILE_HPP

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace com::velanto::connectivity::tools {

// The descriptor of this process that `path` means as an output; nothing for any other path.
[[nodiscard]] std::optional<int> descriptorOf(std::string_view path);
// The file that `path` leads to, which need not exist.
[[nodiscard]] std::filesystem::path endOfLinks(std::filesystem::path path);

class OutputFile {
 public:
  // Throws ReplayError "PATH: reason" with EXIT_IO when the file, or one beside it, cannot be written.
  explicit OutputFile(std::string path);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  // Without a commit before, the old file stays.
  ~OutputFile();

  // Throw ReplayError "cannot write PATH: reason" with EXIT_IO. A reader that closes its pipe is no
  // error; further output is then lost.
  void write(std::string_view text);
  void flush();
  // The last call. After an error the old file stays, too.
  void commit();

  [[nodiscard]] const std::string& path() const noexcept { return path_; }

 private:
  void openTemporary();
  [[noreturn]] void fail(int error) const;

  std::string path_;
  std::string target_;    // the file to replace; empty: written through
  std::string temporary_; // while it exists
  int descriptor_ = -1;
  std::string pending_;
  bool closed_ = false; // its reader has gone
  bool on_terminal_ = false;
};

} // namespace com::velanto::connectivity::tools

#endif
