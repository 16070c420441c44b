// The batches of a recording, asked for in the order of another recording of the same process. Both
// have nearly the same order, since threads overtake each other only a little. So it reads ahead no
// further than WINDOW batches and keeps only batches that it has read ahead.
//
// A batch without any line is either lost to the recording, or none of its messages reached the
// recorder. The running numbers tell: while none is missing, the recorder has recorded all that it
// saw. In a sample that nothing else has thinned out, all recorders have chosen the same batches.
#ifndef VLT_TOOLS_REPLAY_COMPARING_RECORDED_BATCHES_HPP
#define VLT_TOOLS_REPLAY_COMPARING_RECORDED_BATCHES_HPP

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "tools/record/record.hpp"
#include "tools/replay/input/line_reader.hpp"

namespace com::velanto::connectivity::tools {

struct recorded_line_t {
  std::string place; // FILE:LINE
  std::string line;
};

struct recorded_batch_t {
  std::string run;
  recorded_t first;                   // the remark of its first line
  std::vector<recorded_line_t> lines; // in the order of their places
  [[nodiscard]] bool isWhole() const noexcept { return lines.size() == first.of; }
};

class RecordedBatches {
 public:
  // `path` is a recording as inputsFrom() takes it. Throws as that does.
  explicit RecordedBatches(const std::string& path);

  // The batch with the run, number and direction of `wanted`; nothing when there is none. Throws as
  // LineReader does.
  [[nodiscard]] std::optional<recorded_batch_t> take(const std::string& run,
                                                     const recorded_t& wanted);

  // After take() found nothing: whether it is certain that no message of that batch reached the
  // recorder. The batch was chosen from `one_in`.
  [[nodiscard]] bool sawNothingOf(const std::string& run, const recorded_t& wanted,
                                  std::uint64_t one_in) const;

  // Reads the rest. Returns the lines that nobody has taken.
  [[nodiscard]] std::uint64_t finish();

  [[nodiscard]] const Recordings& recordings() const noexcept { return reader_.recordings(); }

 private:
  static constexpr std::uint64_t WINDOW = 4096; // batches

  // Number of the run in the order of the recording, direction, number of the batch.
  using key_t = std::tuple<std::size_t, std::uint64_t, recorded_t::Direction>;

  // A time in which the recorder recorded all that it saw, or all of its sample.
  struct span_t {
    std::string run;
    std::uint64_t one_in;
    std::uint64_t session;
    std::uint64_t gaps; // before it
    std::int64_t begin; // nanoseconds since the epoch
    std::int64_t end;
    std::uint64_t number; // of the last message
  };

  bool readLine();
  bool readBatch();
  void noteTime();
  void endSpan();
  [[nodiscard]] bool isBeyond(const std::string& run, const recorded_t& wanted) const;
  void forget(const std::string& run, const recorded_t& wanted);

  LineReader reader_;
  record_t next_; // the line after the last batch
  bool has_next_ = false;
  std::vector<std::string> runs_;
  std::map<key_t, recorded_batch_t> ahead_;
  std::string last_run_;           // of the batch read last,
  std::optional<recorded_t> last_; // and its first line
  std::deque<span_t> spans_;
  std::uint64_t untaken_ = 0;
};

} // namespace com::velanto::connectivity::tools

#endif
