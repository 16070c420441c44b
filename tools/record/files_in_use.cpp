#include "tools/record/files_in_use.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/options/exit_status.hpp"
#include "tools/record/output_file.hpp"

namespace com::velanto::connectivity::tools {

std::optional<FilesInUse::identity_t> FilesInUse::identityOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) == 0) {
    if (!S_ISREG(status.st_mode)) return {};
    return identity_t(status.st_dev, status.st_ino, "");
  }
  const std::filesystem::path target = endOfLinks(path);
  const std::string folder = target.has_parent_path() ? target.parent_path().string() : ".";
  if (stat(folder.c_str(), &status) != 0) return {};
  return identity_t(status.st_dev, status.st_ino, target.filename().string());
}

std::optional<FilesInUse::identity_t> FilesInUse::identityOf(int descriptor) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return {};
  return identity_t(status.st_dev, status.st_ino, "");
}

void FilesInUse::read(const std::string& path) {
  const std::optional<identity_t> file = path == "-" ? identityOf(STDIN_FILENO) : identityOf(path);
  if (file) uses_.try_emplace(*file, use_t{path == "-" ? "standard input" : path, true});
}

void FilesInUse::writeStreams() {
  writeStream(STDERR_FILENO, "standard error");
  writeStream(STDOUT_FILENO, "standard output");
}

void FilesInUse::writeStream(int descriptor, const char* name) {
  const std::optional<identity_t> file = identityOf(descriptor);
  if (!file) return;
  const use_t& use = uses_.try_emplace(*file, use_t{name, false}).first->second;
  if (!use.is_read) return;
  // The complaint must not go into the file either.
  if (identityOf(STDERR_FILENO) == file) {
    const int elsewhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(identityOf(STDOUT_FILENO) == file ? elsewhere : STDOUT_FILENO, STDERR_FILENO);
    if (elsewhere >= 0) close(elsewhere);
  }
  throw ReplayError(EXIT_USAGE, std::string(name) + " leads to " + use.path + ", which is read");
}

void FilesInUse::write(const std::string& path) {
  const std::optional<identity_t> file = descriptorOf(path) ? std::nullopt : identityOf(path);
  if (!file) return;
  const auto [use, is_free] = uses_.try_emplace(*file, use_t{path, false});
  if (is_free) return;
  throw ReplayError(EXIT_USAGE, path + (use->second.is_read ? " is read and cannot be written, too"
                                                            : " is written twice"));
}

} // namespace com::velanto::connectivity::tools
