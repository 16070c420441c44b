#include "recorder/recording_files.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

namespace com::velanto::connectivity::recorder {

namespace {

// Kept free in each file for the foot, with a gap before it.
constexpr std::uint64_t ENDING_SIZE = FOOT_SIZE + GAP_SIZE;
constexpr std::size_t DIGITS = 6;
constexpr unsigned HIGHEST_NUMBER = 999999;
constexpr unsigned NAMES = 99; // recorders that want the same name

std::string messageOf(int code) {
  char text[128];
  return strerror_r(code, text, sizeof text); // the GNU one, which returns the message
}

// The descriptor, or the error.
OpenFile openOrThrow(const std::string& path, int flags, const char* action) {
  OpenFile file(::open(path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!file.isOpen()) throw DiskError(std::string(action) + path, errno);
  return file;
}

// Bytes up to the end of the last whole line.
std::size_t wholeLines(std::string_view text) noexcept { return text.rfind('\n') + 1; }

} // namespace

DiskError::DiskError(const std::string& action, int code)
    : std::runtime_error("cannot " + action + ": " + messageOf(code)), code_(code) {}

void OpenFile::close() noexcept {
  if (isOpen()) ::close(std::exchange(descriptor_, -1));
}

std::size_t RecordingFiles::longestLine(const configuration_t& configuration) noexcept {
  return configuration.max_file_bytes / 2;
}

RecordingFiles::RecordingFiles(const configuration_t& configuration,
                               std::pair<std::string, std::string> head)
    : folder_(configuration.folder),
      configured_name_(configuration.name),
      max_file_bytes_(configuration.max_file_bytes),
      max_files_(configuration.max_files),
      is_ring_(configuration.is_ring),
      head_(std::move(head)) {}

// ---- the name and the files that are there

void RecordingFiles::takeName() {
  if (!name_.empty()) return;
  std::string name = configured_name_;
  for (unsigned i = 1; i <= NAMES; ++i) {
    const std::string path = folder_ + "/" + name + ".lock";
    OpenFile lock = openOrThrow(path, O_RDWR | O_CREAT, "make ");
    if (flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
      name_lock_ = std::move(lock);
      name_ = std::move(name);
      return;
    }
    if (errno != EWOULDBLOCK) throw DiskError("lock " + path, errno);
    name = configured_name_ + "-" + std::to_string(i + 1);
  }
  throw DiskError("find a free name like " + folder_ + "/" + configured_name_, EBUSY);
}

std::string RecordingFiles::pathOf(unsigned number) const {
  char digits[DIGITS + 1];
  std::snprintf(digits, sizeof digits, "%06u", number);
  return folder_ + "/" + name_ + "." + digits + ".ndjson";
}

// Not by stat, for which a library built here would ask for glibc 2.33.
std::uint64_t RecordingFiles::sizeOf(const std::string& path) const {
  const OpenFile file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  if (!file.isOpen() && errno == ENOENT) return 0;
  const off_t end = file.isOpen() ? lseek(file.get(), 0, SEEK_END) : -1;
  if (end < 0) throw DiskError("tell the size of " + path, errno);
  return static_cast<std::uint64_t>(end);
}

RecordingFiles::present_t RecordingFiles::list() const {
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(folder_.c_str()), closedir);
  if (!folder) throw DiskError("read " + folder_, errno);
  present_t present;
  const std::string begin = name_ + ".";
  const std::string_view end = ".ndjson";
  while (const dirent* const entry = readdir(folder.get())) {
    const std::string_view name(static_cast<const char*>(entry->d_name));
    if (!name.starts_with(begin) || name.size() < begin.size() + DIGITS + end.size()) continue;
    const char* const digits = name.data() + begin.size();
    unsigned number = 0;
    const auto parsed = std::from_chars(digits, digits + DIGITS, number);
    const std::string_view rest = name.substr(begin.size() + DIGITS);
    // A compressed file has another end, and keeps its number taken.
    if (parsed.ptr != digits + DIGITS || !rest.starts_with(end)) continue;
    present.highest = std::max(present.highest, number);
    if (rest != end) continue;
    const std::uint64_t size = sizeOf(pathOf(number));
    present.sizes[number] = size;
    present.total += size;
  }
  return present;
}

// Whether a file of the full size would break the bound.
bool RecordingFiles::isFull(const present_t& present) const noexcept {
  return present.sizes.size() >= max_files_ ||
         present.total + max_file_bytes_ > max_files_ * max_file_bytes_;
}

void RecordingFiles::removeOldest(present_t& present) const {
  const auto oldest = present.sizes.begin();
  const std::string path = pathOf(oldest->first);
  if (unlink(path.c_str()) != 0 && errno != ENOENT) throw DiskError("remove " + path, errno);
  present.total -= oldest->second;
  present.sizes.erase(oldest);
}

// ---- lines

bool RecordingFiles::write(std::string_view lines) {
  try {
    if (writeToFiles(lines)) return true;
  } catch (...) {
    lose(lines);
    throw;
  }
  lose(lines);
  return false;
}

void RecordingFiles::lose(std::string_view lines) noexcept {
  const passage_t passage = readPassage(lines);
  const std::uint64_t lost = passage.recorded + passage.lost;
  if (lost == 0) return;
  gap_.add({passage.first, passage.last, lost, "disk"});
  last_ = passage.last;
}

// Takes the lines that it has written off `lines`.
bool RecordingFiles::writeToFiles(std::string_view& lines) {
  while (!lines.empty()) {
    if (file_.isOpen() && access(path_.c_str(), F_OK) != 0) file_.close(); // somebody removed it
    if (!file_.isOpen() && !open()) return false;
    writeGapOfDisk();
    writeLines(lines);
    if (lines.empty()) break;
    const counts_t counts{last_, recorded_, last_ - recorded_ - lost(), lost()};
    close(counts, is_ring_ || !isFull(list()));
  }
  return true;
}

// Begins the next file. False: there is no room for one.
bool RecordingFiles::open() {
  takeName();
  present_t present = list();
  number_ = std::max(number_, present.highest);
  if (number_ >= HIGHEST_NUMBER) return false;
  while (isFull(present)) {
    if (!is_ring_) return false;
    removeOldest(present);
  }
  std::string path = pathOf(++number_);
  file_ = openOrThrow(path, O_WRONLY | O_CREAT | O_EXCL | O_APPEND, "make ");
  size_ = 0;
  path_ = std::move(path); // a copy could fail, and leave the file without its head
  try {
    const std::string head = head_.first + std::to_string(number_) + head_.second;
    std::string_view text = head;
    put(text, text.size());
  } catch (...) { // no file without a head
    unlink(path_.c_str());
    file_.close();
    throw;
  }
  return true;
}

// As many whole lines as the file has room for.
void RecordingFiles::writeLines(std::string_view& lines) {
  if (size_ + ENDING_SIZE > max_file_bytes_) return;
  const std::uint64_t room = max_file_bytes_ - ENDING_SIZE - size_;
  put(lines, room < lines.size() ? wholeLines(lines.substr(0, room)) : lines.size());
}

// Where the file has no room for it, the next one begins with it.
void RecordingFiles::writeGapOfDisk() {
  if (gap_.lost == 0 || size_ + ENDING_SIZE > max_file_bytes_) return;
  char text[GAP_SIZE];
  std::string_view line(text, static_cast<std::size_t>(writeGap(text, gap_) - text));
  put(line, line.size());
  gap_ = {};
}

// Writes the first `size` bytes of `text`, whole lines. Takes the lines that are in the file
// afterwards off `text`, and counts them, also before it throws.
void RecordingFiles::put(std::string_view& text, std::size_t size) {
  std::size_t written = 0;
  int error = 0;
  while (written < size && error == 0) {
    const ssize_t part = ::write(file_.get(), text.data() + written, size - written);
    if (part > 0) written += static_cast<std::size_t>(part);
    if (part == 0) error = EIO;
    if (part < 0 && errno != EINTR) error = errno;
  }
  const std::size_t kept = wholeLines(text.substr(0, written));
  const passage_t passage = readPassage(text.substr(0, kept));
  recorded_ += passage.recorded;
  lost_ += passage.lost;
  if (passage.last != 0) last_ = passage.last;
  text.remove_prefix(kept);
  size_ += kept;
  if (error == 0) return;
  // Without the rest of a line, which the next one would lengthen.
  if (ftruncate(file_.get(), static_cast<off_t>(size_)) != 0) file_.close();
  throw DiskError("write to " + path_, error);
}

// ---- the end of a file

void RecordingFiles::finish(std::uint64_t seen, std::uint64_t filtered) {
  if (!file_.isOpen() && !open()) return;
  writeGapOfDisk();
  close({seen, recorded_, filtered, lost()}, false);
}

void RecordingFiles::close(const counts_t& counts, bool has_next) {
  char text[FOOT_SIZE];
  std::string_view foot(
      text, static_cast<std::size_t>(writeFoot(text, timeNow(), counts, has_next) - text));
  put(foot, foot.size());
  file_.close();
}

} // namespace com::velanto::connectivity::recorder
