#include "tools/record/output_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <system_error>
#include <utility>

#include "ndjson/visible_text.hpp"
#include "tools/host/standard_error_capture.hpp"
#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::tools {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t LARGE_PIECE = std::size_t{64} << 10; // bytes

[[noreturn]] void refuseOutput(const std::string& path, int error) {
  throw ReplayError(EXIT_IO, path + ": " + std::generic_category().message(error));
}

} // namespace

std::optional<int> descriptorOf(std::string_view path) {
  if (path == "-" || path == "/dev/stdout") return STDOUT_FILENO;
  if (path == "/dev/stderr") return STDERR_FILENO;
  for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
    if (!path.starts_with(folder)) continue;
    int number = 0;
    const char* const end = path.data() + path.size();
    if (std::from_chars(path.data() + folder.size(), end, number).ptr == end) return number;
  }
  return {};
}

fs::path endOfLinks(fs::path path) {
  constexpr int MOST = 40; // as the kernel has it
  for (int i = 0; i < MOST && fs::is_symlink(path); ++i) {
    const fs::path next = fs::read_symlink(path);
    path = next.is_absolute() ? next : path.parent_path() / next;
  }
  return path;
}

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {
  const std::optional<int> descriptor = descriptorOf(path_);
  struct stat status {};
  if (descriptor) {
    const bool is_error = *descriptor == STDERR_FILENO;
    descriptor_ =
        fcntl(is_error ? StandardErrorCapture::realDescriptor() : *descriptor, F_DUPFD_CLOEXEC, 0);
  } else if (stat(path_.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    descriptor_ = open(path_.c_str(), O_WRONLY | O_CLOEXEC); // refuses a folder
  } else {
    openTemporary();
  }
  if (descriptor_ < 0) refuseOutput(path_, errno);
  on_terminal_ = isatty(descriptor_) == 1;
}

// Leaves the descriptor at -1 and the reason in errno when there can be none.
void OutputFile::openTemporary() {
  constexpr int MOST = 1000;
  constexpr std::size_t LONGEST = 200; // characters of a name, so that more fit behind it
  target_ = failingWith(EXIT_IO, [this] { return endOfLinks(path_).string(); });
  const fs::path target(target_);
  struct stat old {};
  const bool exists = stat(target_.c_str(), &old) == 0;
  if (exists && access(target_.c_str(), W_OK) != 0) return;
  std::string name = ".";
  name.append(target.filename().string(), 0, LONGEST).append(".");
  for (int number = 1; number < MOST && descriptor_ < 0; ++number) {
    temporary_ = (target.parent_path() / (name + std::to_string(number))).string();
    descriptor_ = open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ < 0 && errno != EEXIST) break;
  }
  if (descriptor_ < 0) {
    temporary_.clear();
  } else if (exists) {
    // Only some users may give files away; then the file is the user's own.
    if (fchown(descriptor_, old.st_uid, old.st_gid) != 0) errno = 0;
    fchmod(descriptor_, old.st_mode & 0777);
  }
}

OutputFile::~OutputFile() {
  if (!temporary_.empty()) unlink(temporary_.c_str());
  if (descriptor_ >= 0) close(descriptor_);
}

void OutputFile::fail(int error) const {
  throw ReplayError(EXIT_IO,
                    "cannot write " + path_ + ": " + std::generic_category().message(error));
}

void OutputFile::write(std::string_view text) {
  if (closed_) return;
  pending_ += text;
  if (pending_.size() >= LARGE_PIECE) flush();
}

void OutputFile::flush() {
  if (on_terminal_) pending_ = visibleLines(pending_);
  std::string_view rest = pending_;
  while (!rest.empty() && !closed_) {
    const ssize_t written = ::write(descriptor_, rest.data(), rest.size());
    if (written >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EPIPE) {
      closed_ = true;
    } else if (errno != EINTR) {
      const int error = errno;
      pending_.clear();
      fail(error);
    }
  }
  pending_.clear();
}

void OutputFile::commit() {
  flush();
  if (temporary_.empty()) return;
  // Some file systems tell only now that there is no room.
  if (fsync(descriptor_) != 0 && errno != EINVAL) fail(errno);
  if (std::rename(temporary_.c_str(), target_.c_str()) != 0) fail(errno);
  temporary_.clear();
}

} // namespace com::velanto::connectivity::tools
