// The files of one recorder:
//
//   FOLDER/NAME.lock              held while the recorder lives; of a name that is taken, NAME-2 …
//   FOLDER/NAME.000001.ndjson     head, messages and gaps, foot; numbers rise over restarts
//   FOLDER/NAME.000002.ndjson     begun when the file before it is full
//
// All files of a name, those of earlier runs included, never exceed maxFiles × maxFileMebibytes: a
// new file is made only where it has room to its full size. In a ring the oldest files make that room.
//
// A file that somebody removes is lost, and the recording goes on in a new one.
#ifndef VLT_RECORDER_RECORDING_FILES_HPP
#define VLT_RECORDER_RECORDING_FILES_HPP

#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "recorder/recording_lines.hpp"

namespace com::velanto::connectivity::recorder {

// A failure of the disk: "cannot ACTION FILE: REASON", and the system's number for it.
class DiskError : public std::runtime_error {
 public:
  DiskError(const std::string& action, int code);
  [[nodiscard]] int code() const noexcept { return code_; }

 private:
  int code_;
};

// Owns a file descriptor; -1 is none.
class OpenFile {
 public:
  explicit OpenFile(int descriptor = -1) noexcept : descriptor_(descriptor) {}
  OpenFile(OpenFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  OpenFile& operator=(OpenFile&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() { close(); }

  void close() noexcept;
  [[nodiscard]] int get() const noexcept { return descriptor_; }
  [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }

 private:
  int descriptor_;
};

// One thread at a time.
class RecordingFiles {
 public:
  // Of a line, so that any fits into a new file; room for the recorder's own lines is extra.
  static std::size_t longestLine(const configuration_t& configuration) noexcept;

  // `head` is the head's line in two parts, before and after the file's number. Touches no disk.
  RecordingFiles(const configuration_t& configuration, std::pair<std::string, std::string> head);

  // Takes the first free name, unless there is one already. Throws DiskError, std::bad_alloc.
  void takeName();

  // Writes whole lines. Those for which there is no file any more count as lost. False: the bound is
  // reached, and no file makes room. Throws DiskError and std::bad_alloc, after counting all other
  // lines as lost; a file then ends with its last whole line, and later calls go on in it.
  [[nodiscard]] bool write(std::string_view lines);

  // Counts lines as lost because of the disk, without an attempt.
  void lose(std::string_view lines) noexcept;

  // Writes the foot into the open file and closes it. Without an open file it begins one, for the
  // gap of lost messages. `seen` and `filtered` are the recorder's so far; lines written or lost here have
  // all its other messages. Throws DiskError and std::bad_alloc; the foot then waits for the next call.
  void finish(std::uint64_t seen, std::uint64_t filtered);

  [[nodiscard]] std::uint64_t recorded() const noexcept { return recorded_; }
  [[nodiscard]] std::uint64_t lost() const noexcept { return lost_ + gap_.lost; }
  // Whether there is anything to finish.
  [[nodiscard]] bool isUnfinished() const noexcept { return file_.isOpen() || gap_.lost != 0; }
  // The path of the current file, or of the last one; empty before the first.
  [[nodiscard]] const std::string& path() const noexcept { return path_; }

 private:
  struct present_t {
    std::map<unsigned, std::uint64_t> sizes; // by number, uncompressed ones
    unsigned highest = 0;
    std::uint64_t total = 0; // bytes
  };
  [[nodiscard]] present_t list() const;
  [[nodiscard]] bool isFull(const present_t& present) const noexcept;
  void removeOldest(present_t& present) const;
  [[nodiscard]] std::string pathOf(unsigned number) const;
  [[nodiscard]] std::uint64_t sizeOf(const std::string& path) const;

  [[nodiscard]] bool writeToFiles(std::string_view& lines);
  [[nodiscard]] bool open();
  void writeLines(std::string_view& lines);
  void put(std::string_view& text, std::size_t size);
  void writeGapOfDisk();
  void close(const counts_t& counts, bool has_next);

  const std::string folder_;
  const std::string configured_name_;
  const std::uint64_t max_file_bytes_;
  const std::uint64_t max_files_;
  const bool is_ring_;
  const std::pair<std::string, std::string> head_;

  std::string name_; // empty until it is taken
  OpenFile name_lock_;
  OpenFile file_;
  std::string path_;
  std::uint64_t size_ = 0; // of the open file, bytes
  unsigned number_ = 0;    // of the last file

  gap_t gap_; // of lines lost since the last one written
  std::uint64_t recorded_ = 0;
  std::uint64_t lost_ = 0; // by the gaps written
  std::uint64_t last_ = 0; // number of the last message written or lost
};

} // namespace com::velanto::connectivity::recorder

#endif
