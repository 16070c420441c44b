// The remarks of recorders in the input beside the messages, collected for the figures: the head of
// each file, the gaps where records were lost, and the feet with the counts.
//
//   {"recording":{"head":{"format":1,"plugin":…,"chain":…,"run":…,"file":3,"oneIn":1,"omit":[…],…}}}
//   {"recording":{"gap":{"first":19,"last":24,"lost":6,"reason":"buffer"}}}
//   {"recording":{"foot":{"ended":…,"seen":24,"recorded":10,"filtered":8,"lost":6}}}
//
// The foot of a full file, which has a successor, also has "next":true.
#ifndef VLT_TOOLS_REPLAY_INPUT_RECORDINGS_HPP
#define VLT_TOOLS_REPLAY_INPUT_RECORDINGS_HPP

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "tools/replay/input/recording_files.hpp"

namespace com::velanto::connectivity::tools {

// Of messages, since the recorder's start.
struct recorder_counts_t {
  std::uint64_t seen = 0;
  std::uint64_t recorded = 0;
  std::uint64_t filtered = 0;
  std::uint64_t lost = 0;
};

// The files that a recorder wrote in one life of its process.
struct recording_t {
  std::string name; // of the files; of another input its name
  std::string plugin;
  std::string chain;
  std::string run;                  // identity of the process
  std::int64_t started = 0;         // nanoseconds since the epoch
  std::uint64_t one_in = 1;         // of so many batches it kept one
  bool filters = false;             // it left out messages for other reasons than this
  std::vector<std::string> omitted; // paths of texts that it replaced

  std::vector<std::uint64_t> files;  // their numbers, in the order read
  std::uint64_t sessions = 1;        // times that the recorder was switched on, as far as read
  std::uint64_t messages = 0;        // lines in these files
  std::uint64_t other_direction = 0; // of these, not in the direction that the run reads
  std::uint64_t gaps = 0;
  std::uint64_t lost = 0;                  // messages in these gaps
  std::optional<recorder_counts_t> counts; // of the last foot
  std::int64_t ended = 0;                  // time of the last foot; 0: it is not the last file's
  std::uint64_t left_over = 0;             // bytes after the last whole line
};

// Numbers of files of a recording.
struct file_range_t {
  std::string name; // of the recording
  std::uint64_t first = 0;
  std::uint64_t last = 0;
};

// What a summary has of the recordings in a part of an input.
struct recordings_part_t {
  std::vector<recording_t> all;
  std::vector<file_range_t> read;
  std::vector<file_range_t> deleted;
  std::uint64_t headless = 0;
};

class Recordings {
 public:
  // Whether a line is a remark that take() understands, or the beginning of one.
  [[nodiscard]] static bool isRemark(std::string_view line) noexcept;

  // A new input begins: the file of a recording, or one with another name.
  void begin(const recording_file_t& file, const std::string& name);
  // The file is gone.
  void skip(const recording_file_t& file);

  // False: `line`, which isRemark(), is not well-formed. Throws ReplayError with EXIT_BAD_INPUT for
  // a format that this program does not know; `place` is the line's.
  bool take(std::string_view line, const std::string& place);
  // A message, of the direction that the run reads or of the other one.
  void takeMessage(bool wanted) noexcept;
  // The input ends with so many bytes after its last whole line.
  void takeRest(std::size_t bytes) noexcept;
  // Adds the next part of an input.
  void add(const recordings_part_t& part);

  // The recording of the current line; null before its head.
  [[nodiscard]] const recording_t* current() const noexcept { return current_; }

  [[nodiscard]] const std::deque<recording_t>& all() const noexcept { return all_; }
  // For each name the first and the last file that was read, in the order of reading.
  [[nodiscard]] const std::map<std::string, file_range_t>& read() const noexcept { return read_; }
  // Files that were gone when their turn came.
  [[nodiscard]] const std::vector<file_range_t>& deleted() const noexcept { return deleted_; }
  // Bytes of files that end before their head does.
  [[nodiscard]] std::uint64_t headless() const noexcept { return headless_; }
  // Feet whose counts contradict each other: a line for each.
  [[nodiscard]] const std::vector<std::string>& faults() const noexcept { return faults_; }

 private:
  void takeHead(const map_t& head, const std::string& place);
  void takeFoot(const map_t& foot, const std::string& place);
  void takeFiles(const file_range_t& files);
  recording_t& recordingLike(const recording_t& other);

  JsonReader reader_;
  std::string input_;           // name of the current one
  std::deque<recording_t> all_; // a deque, so that current_ and the names of runs stay in place
  recording_t* current_ = nullptr;
  bool counts_ = true; // false: the current file is read again
  std::map<std::string, file_range_t> read_;
  std::uint64_t headless_ = 0;
  std::vector<file_range_t> deleted_;
  std::vector<std::string> faults_;
};

} // namespace com::velanto::connectivity::tools

#endif
