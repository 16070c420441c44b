#include "tools/replay/input/recordings.hpp"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "tools/options/exit_status.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::string_view BEGIN = R"({"recording":)";
constexpr std::int64_t FORMAT = 1; // the newest one that this program knows

const data_t* memberOf(const map_t& map, const char* name) { return map.find_value(data_t(name)); }

const map_t* mapIn(const map_t& map, const char* name) {
  const data_t* const value = memberOf(map, name);
  return value != nullptr && value->type_tag() == VLT_TAG_MAP ? &value->get<map_t>() : nullptr;
}

std::int64_t numberIn(const map_t& map, const char* name) {
  const data_t* const value = memberOf(map, name);
  return value != nullptr && value->type_tag() == VLT_TAG_INTEGER ? value->get<std::int64_t>() : 0;
}

std::uint64_t countIn(const map_t& map, const char* name) {
  return static_cast<std::uint64_t>(numberIn(map, name));
}

std::string textOf(const data_t* value) {
  return value != nullptr && value->is_string() ? text_or_empty(value->get<const char*>()) : "";
}

std::vector<std::string> textsIn(const map_t& map, const char* name) {
  std::vector<std::string> texts;
  const data_t* const value = memberOf(map, name);
  if (value == nullptr || value->type_tag() != VLT_TAG_LIST) return texts;
  for (const data_t& text : value->get<list_t>()) texts.push_back(textOf(&text));
  return texts;
}

// Whether the recorder is configured to leave out messages, but for samples.
bool hasFilter(const map_t* configuration) {
  constexpr std::array<const char*, 6> FILTERS = {"directions",        "kinds",
                                                  "pathPrefix",        "whileFileExists",
                                                  "stopAfterMessages", "stopAfterSeconds"};
  return configuration == nullptr ||
         std::any_of(FILTERS.begin(), FILTERS.end(), [configuration](const char* name) {
           const data_t* const value = memberOf(*configuration, name);
           return value != nullptr && (!value->is_string() || !textOf(value).empty()) &&
                  (value->type_tag() != VLT_TAG_INTEGER || value->get<std::int64_t>() != 0);
         });
}

} // namespace

bool Recordings::isRemark(std::string_view line) noexcept {
  return !line.empty() && (line.starts_with(BEGIN) || BEGIN.starts_with(line));
}

void Recordings::begin(const recording_file_t& file, const std::string& name) {
  input_ = file.number == 0 ? name : file.name;
  current_ = nullptr;
  counts_ = true;
  if (file.number != 0) takeFiles({file.name, file.number, file.number});
}

// Files between two that were read are gone.
void Recordings::takeFiles(const file_range_t& files) {
  std::uint64_t& last = read_.try_emplace(files.name, files).first->second.last;
  if (last + 1 < files.first) deleted_.push_back({files.name, last + 1, files.first - 1});
  last = files.last;
}

void Recordings::skip(const recording_file_t& file) {
  begin(file, "");
  deleted_.push_back({file.name, file.number, file.number});
}

bool Recordings::take(std::string_view line, const std::string& place) {
  try {
    const data_t value = reader_.parseValue(line);
    const map_t* const remark = mapIn(value.get<map_t>(), "recording");
    if (remark == nullptr) return false;
    if (const map_t* const head = mapIn(*remark, "head")) takeHead(*head, place);
    if (current_ == nullptr || !counts_) return true;
    if (const map_t* const gap = mapIn(*remark, "gap")) {
      ++current_->gaps;
      current_->lost += countIn(*gap, "lost");
    }
    if (const map_t* const foot = mapIn(*remark, "foot")) takeFoot(*foot, place);
    return true;
  } catch (const MalformedJson&) {
    return false;
  }
}

void Recordings::takeHead(const map_t& head, const std::string& place) {
  const std::int64_t format = numberIn(head, "format");
  if (format < 1 || format > FORMAT) {
    throw ReplayError(EXIT_BAD_INPUT, place + ": a recording of format " + std::to_string(format) +
                                          ", this program knows format " + std::to_string(FORMAT));
  }
  recording_t next;
  next.name = input_;
  next.plugin = textOf(memberOf(head, "plugin"));
  next.chain = textOf(memberOf(head, "chain"));
  next.run = textOf(memberOf(head, "run"));
  current_ = &recordingLike(next);
  const std::uint64_t number = countIn(head, "file");
  counts_ =
      std::find(current_->files.begin(), current_->files.end(), number) == current_->files.end();
  if (!counts_) return;
  current_->files.push_back(number);
  if (std::exchange(current_->ended, 0) != 0) ++current_->sessions;
  current_->started = numberIn(head, "started");
  current_->one_in = std::max<std::uint64_t>(countIn(head, "oneIn"), 1);
  current_->omitted = textsIn(head, "omit");
  current_->filters = current_->filters || hasFilter(mapIn(head, "configuration"));
}

void Recordings::takeFoot(const map_t& foot, const std::string& place) {
  const recorder_counts_t counts{countIn(foot, "seen"), countIn(foot, "recorded"),
                                 countIn(foot, "filtered"), countIn(foot, "lost")};
  if (counts.seen != counts.recorded + counts.filtered + counts.lost) {
    faults_.push_back(place + ": seen " + std::to_string(counts.seen) + " is not recorded " +
                      std::to_string(counts.recorded) + " + filtered " +
                      std::to_string(counts.filtered) + " + lost " + std::to_string(counts.lost));
  }
  current_->counts = counts;
  if (memberOf(foot, "next") == nullptr) current_->ended = numberIn(foot, "ended");
}

// The recording with the identity of `other`, a new one if there is none.
recording_t& Recordings::recordingLike(const recording_t& other) {
  const auto known = std::find_if(all_.begin(), all_.end(), [&other](const recording_t& each) {
    return each.name == other.name && each.run == other.run && each.plugin == other.plugin &&
           each.chain == other.chain;
  });
  if (known != all_.end()) return *known;
  recording_t& added = all_.emplace_back();
  added.name = other.name;
  added.plugin = other.plugin;
  added.chain = other.chain;
  added.run = other.run;
  return added;
}

void Recordings::takeMessage(bool wanted) noexcept {
  if (current_ == nullptr || !counts_) return;
  ++current_->messages;
  if (!wanted) ++current_->other_direction;
}

void Recordings::takeRest(std::size_t bytes) noexcept {
  if (current_ != nullptr && counts_) current_->left_over += bytes;
  if (current_ == nullptr) headless_ += bytes;
}

void Recordings::add(const recordings_part_t& part) {
  for (const file_range_t& files : part.read) takeFiles(files);
  deleted_.insert(deleted_.end(), part.deleted.begin(), part.deleted.end());
  headless_ += part.headless;
  for (const recording_t& recording : part.all) {
    recording_t& sum = recordingLike(recording);
    // Pieces of one file, each with its head, are one file.
    std::copy_if(recording.files.begin(), recording.files.end(), std::back_inserter(sum.files),
                 [&sum](std::uint64_t file) {
                   return std::find(sum.files.begin(), sum.files.end(), file) == sum.files.end();
                 });
    sum.messages += recording.messages;
    sum.other_direction += recording.other_direction;
    sum.gaps += recording.gaps;
    sum.lost += recording.lost;
    if (recording.counts) sum.counts = recording.counts;
    sum.ended = recording.ended;
    sum.left_over += recording.left_over;
    sum.one_in = recording.one_in;
    sum.omitted = recording.omitted;
  }
}

} // namespace com::velanto::connectivity::tools
