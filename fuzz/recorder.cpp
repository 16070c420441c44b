// The recorder from batches to files and back: each message is recorded as it was, filtered or lost,
// and the counts say so. Files keep their bound, and a reader understands all of them.
//
//   input   byte: files, and whether they are a ring. Byte: bytes of a file. Byte: kinds.
//           Then steps, each a byte: a batch, with bytes for its messages; lines from buffer to
//           files, or lost; the end of a file; recording switched on or off
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/block_count.hpp"
#include "fuzz/finding.hpp"
#include "ndjson/json_reader.hpp"
#include "ndjson/recorded.hpp"
#include "recorder/recording_buffer.hpp"
#include "recorder/recording_files.hpp"
#include "tests/ndjson/recorded_law.hpp"
#include "tests/tools/temporary_folder.hpp"
#include "tools/replay/input/recordings.hpp"

namespace fuzz = com::velanto::connectivity::fuzz;
namespace recorder = com::velanto::connectivity::recorder;
namespace test = com::velanto::connectivity::test;
namespace tools = com::velanto::connectivity::tools;
using com::velanto::connectivity::FieldSet;
using com::velanto::connectivity::JsonReader;
using com::velanto::connectivity::Message;
using com::velanto::connectivity::recorded_t;
using com::velanto::connectivity::recordedIn;
using recorder::RecordingBuffer;
using State = RecordingBuffer::State;

namespace {

constexpr std::size_t LONGEST_LINE = 700;
constexpr std::size_t LEAST_FILE = 1600; // head, foot, two gaps and a line
constexpr std::string_view MESSAGE = R"({"recorded":)";

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : bytes_(data, size) {}
  [[nodiscard]] bool atEnd() const { return bytes_.empty(); }
  std::uint8_t byte() { return bytes_.empty() ? std::uint8_t{0} : take(1)[0]; }
  std::span<const std::uint8_t> take(std::size_t count) {
    const auto first = bytes_.first(std::min(count, bytes_.size()));
    bytes_ = bytes_.subspan(first.size());
    return first;
  }

 private:
  std::span<const std::uint8_t> bytes_;
};

const test::TemporaryFolder& folder() {
  static const test::TemporaryFolder FOLDER;
  return FOLDER;
}

recorder::configuration_t settings(Input& input) {
  recorder::configuration_t result;
  const std::uint8_t files = input.byte();
  result.folder = folder().path("");
  result.name = "n";
  result.max_files = 1 + files / 2 % 4;
  result.is_ring = files % 2 == 0;
  result.max_file_bytes = LEAST_FILE + std::size_t{16} * input.byte();
  result.kinds = input.byte() % 4 == 3 ? 1 : 0; // mostly all messages
  return result;
}

// A recorder without its thread: the steps of the input take the thread's place.
class Recorder {
 public:
  explicit Recorder(const recorder::configuration_t& settings)
      : settings_(settings),
        filter_(settings, 1),
        files_(settings, {R"({"recording":{"head":{"format":1,"run":"r","file":)", "}}}\n"}) {
    buffer().end(State::CLOSED);
    // Numbers begin with 1, whatever the inputs before have sent: the count wraps at 64 bits.
    buffer().skip(0 - buffer().take().seen);
    filtered_before_ = buffer().take().filtered;
    buffer().begin(UINT64_MAX);
  }

  void step(Input& input) {
    const std::uint8_t choice = input.byte();
    if (choice < 160) return send(input, choice);
    if (choice < 210) return write();
    if (choice < 220) return lose();
    if (choice < 232) return finish();
    if (choice < 240) return buffer().end(choice % 2 == 0 ? State::OFF : State::CLOSED);
    buffer().begin(choice == 255 ? UINT64_MAX : choice % 16 + 1U);
  }
  void finish() {
    write();
    files_.finish(sent_, sent_ - recorded_ - lost_);
  }
  // After the last step.
  void checkFiles() const;

 private:
  struct sent_t {
    Message message;
    recorded_t remark;
  };

  // One for all inputs: making it fills eight mebibytes.
  static RecordingBuffer& buffer() {
    static RecordingBuffer the_buffer(FieldSet(), LONGEST_LINE);
    return the_buffer;
  }
  void send(Input& input, std::uint8_t choice);
  void write();
  void lose(); // as while the disk fails
  std::string_view take();
  void checkLine(const std::string& line);

  const recorder::configuration_t settings_;
  const recorder::Filter filter_;
  recorder::RecordingFiles files_;
  JsonReader reader_;
  std::map<std::uint64_t, sent_t> under_way_; // by number, since the last write
  std::uint64_t filtered_before_ = 0;
  std::uint64_t batches_ = 0;
  std::uint64_t sent_ = 0; // messages; each is then recorded, lost or filtered
  std::uint64_t recorded_ = 0;
  std::uint64_t lost_ = 0;
  std::string lines_; // of messages, for the files
};

void Recorder::send(Input& input, std::uint8_t choice) {
  std::vector<Message> batch(1 + choice % 3);
  for (Message& message : batch) message = test::messageFrom(input.take(input.byte()));
  ++batches_;
  const bool to_host = choice < 80;
  const auto direction = to_host ? recorder::Direction::HOST : recorder::Direction::TRANSPORT;
  buffer().add({batch, direction, batches_}, filter_);
  const std::uint64_t size = batch.size();
  for (std::uint64_t place = 0; place < size; ++place) {
    ++sent_;
    under_way_[sent_] = {
        std::move(batch[place]),
        {0, sent_, batches_, place, size,
         to_host ? recorded_t::Direction::HOST : recorded_t::Direction::TRANSPORT}};
  }
}

void Recorder::write() {
  const std::string_view lines = take();
  const bool is_written = files_.write(lines);
  fuzz::require(is_written || !settings_.is_ring, "a ring has room");
  fuzz::require(files_.recorded() + files_.lost() == recorded_ + lost_, "files count every line");
}

void Recorder::lose() {
  const std::size_t before = lines_.size();
  files_.lose(take());
  lines_.resize(before);
}

std::string_view Recorder::take() {
  const RecordingBuffer::taken_t taken = buffer().take();
  const recorder::passage_t passage = recorder::readPassage(taken.lines);
  std::istringstream lines{std::string(taken.lines)};
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(MESSAGE)) checkLine(line);
  }
  under_way_.clear();
  recorded_ += passage.recorded;
  lost_ += passage.lost;
  fuzz::require(
      taken.seen == sent_ && sent_ == recorded_ + lost_ + taken.filtered - filtered_before_,
      "seen = recorded + filtered + lost");
  return taken.lines;
}

void Recorder::checkLine(const std::string& line) {
  std::optional<recorded_t> remark = recordedIn(line);
  fuzz::require(remark && remark->time > 0, "a recorded line has its remark");
  remark->time = 0;
  const auto sent = under_way_.find(remark->number);
  fuzz::require(sent != under_way_.end() && sent->second.remark == *remark,
                "a remark tells the batch and the place");
  const Message read = reader_.parseMessage(line);
  const Message& message = sent->second.message;
  fuzz::require(test::isReadBack(message.getPayload(), read.getPayload()) &&
                    test::isReadBack(message.getMetadataMap(), read.getMetadataMap()),
                "a message reads back as the same");
  under_way_.erase(sent); // no other line may have it
  lines_ += line + "\n";
}

void Recorder::checkFiles() const {
  std::set<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(settings_.folder)) {
    if (entry.path().extension() == ".ndjson") paths.insert(entry.path());
  }
  fuzz::require(paths.size() <= settings_.max_files, "there are no more files than configured");
  tools::Recordings recordings;
  std::string lines; // of messages
  for (const std::filesystem::path& path : paths) {
    fuzz::require(std::filesystem::file_size(path) <= settings_.max_file_bytes, "a file is short");
    recordings.begin({settings_.folder, settings_.name, 1, path}, path);
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
      if (line.starts_with(MESSAGE)) {
        lines += line + "\n";
      } else {
        fuzz::require(recordings.take(line, path), "a reader understands a recorder's own lines");
      }
    }
    std::filesystem::remove(path);
  }
  fuzz::require(recordings.faults().empty(), "the counts of a foot add up");
  if (!paths.empty() && settings_.is_ring) {
    const auto& counts = recordings.current()->counts;
    fuzz::require(counts && counts->recorded == files_.recorded() && counts->lost == files_.lost(),
                  "the last foot counts all messages");
  }
  fuzz::require(settings_.is_ring ? lines_.ends_with(lines) : lines_.starts_with(lines),
                "files have the last messages of a ring, otherwise the first ones");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::BlockCount no_block_is_left;
  Input input(data, size);
  Recorder one(settings(input));
  while (!input.atEnd()) one.step(input);
  one.finish();
  one.checkFiles();
  return 0;
}
