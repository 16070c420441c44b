// A recording as it lies on disk, and the law of its numbers. A recorder without filters has, for
// each number from the first to the last one of its life, either the record of that message or a gap:
//
//   head  record 1  record 2  gap 3 to 7  record 8 …  foot: seen 8 = recorded 3 + filtered 0 + lost 5
//
// The oldest files may be gone; the last file may end without a foot, and within a line.
#ifndef VLT_TESTS_RECORDING_RECORDING_HPP
#define VLT_TESTS_RECORDING_RECORDING_HPP

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace com::velanto::connectivity::test {

struct foot_t {
  std::int64_t seen = 0;
  std::int64_t recorded = 0;
  std::int64_t filtered = 0;
  std::int64_t lost = 0;
  bool next = false; // the recording goes on in another file
};

// A record, or a gap.
struct numbers_t {
  std::int64_t first = 0;
  std::int64_t last = 0;
  std::int64_t batch = -1; // of a record
};

struct recorded_file_t {
  std::filesystem::path path;
  std::uintmax_t bytes = 0;
  std::uintmax_t left_over = 0; // bytes after the last whole line
  std::string run;              // of the head; empty: no head
  std::vector<numbers_t> numbers;
  std::vector<std::string> records; // the lines
  std::optional<foot_t> foot;
};

// The files of one name, in their order. Throws MalformedJson for a line that is none, and
// std::runtime_error for a line of another form.
[[nodiscard]] std::vector<recorded_file_t> readRecording(const std::filesystem::path& folder,
                                                         const std::string& name);

// The first breach of the law, with its place; empty when there is none.
[[nodiscard]] std::string breachIn(const std::vector<recorded_file_t>& files);

[[nodiscard]] std::int64_t recordsIn(const std::vector<recorded_file_t>& files);
[[nodiscard]] std::uintmax_t bytesIn(const std::filesystem::path& folder);

} // namespace com::velanto::connectivity::test

#endif
