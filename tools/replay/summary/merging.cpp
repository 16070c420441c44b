#include "tools/replay/summary/merging.hpp"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

#include "ndjson/json_reader.hpp"
#include "tools/replay/input/line_reader.hpp"
#include "tools/replay/summary/summary.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::string_view SUMMARY_BEGIN = R"({"version":)";

[[noreturn]] void refuse(const std::string& place, const std::string& reason) {
  throw ReplayError(EXIT_USAGE, place + ": " + reason);
}

// A value in a summary. Every function throws ReplayError when the summary has another form.
class Part {
 public:
  // `place` is the line of the summary, `path` where the value is in it.
  Part(const data_t& value, const std::string& place, std::string path)
      : value_(value), place_(place), path_(std::move(path)) {}

  [[nodiscard]] const std::string& place() const noexcept { return place_; }
  [[nodiscard]] bool isNull() const noexcept { return value_.type_tag() == VLT_TAG_EMPTY; }
  [[nodiscard]] bool has(const char* name) const {
    return content<map_t>().find_value(data_t(name)) != nullptr;
  }
  Part operator[](const char* name) const {
    const data_t* const member = content<map_t>().find_value(data_t(name));
    const std::string path = path_.empty() ? name : path_ + "." + name;
    if (member == nullptr)
      refuse(place_, "a summary without " + path + ", perhaps of an older tool");
    return {*member, place_, path};
  }
  [[nodiscard]] std::vector<Part> elements() const {
    std::vector<Part> parts;
    for (const data_t& element : content<list_t>()) parts.emplace_back(element, place_, path_);
    return parts;
  }

  [[nodiscard]] bool flag() const { return content<bool>(); }
  [[nodiscard]] std::int64_t number() const { return content<std::int64_t>(); }
  [[nodiscard]] std::uint64_t count() const {
    if (number() < 0) refuseKind();
    return static_cast<std::uint64_t>(number());
  }
  [[nodiscard]] double amount() const {
    return value_.type_tag() == VLT_TAG_DOUBLE ? content<double>() : static_cast<double>(number());
  }
  [[nodiscard]] std::string text() const {
    if (!value_.is_string()) refuseKind();
    return text_or_empty(value_.get<const char*>());
  }
  [[nodiscard]] std::string textOrNull() const { return isNull() ? "" : text(); }
  template <class T>
  [[nodiscard]] const T& content() const {
    if (value_.type_tag() != TAG_OF<T>) refuseKind();
    return value_.get<T>();
  }

 private:
  [[noreturn]] void refuseKind() const {
    refuse(place_, "a summary with a wrong value in " + path_);
  }

  const data_t& value_;
  const std::string& place_;
  std::string path_;
};

file_identity_t libraryIn(const Part& part) {
  return {part["path"].text(), part["size"].count(), part["sha256"].text(),
          part["build_id"].textOrNull(), part["build"].textOrNull()};
}

builds_t buildsIn(const Part& part) {
  builds_t builds{part["tool"].text(), libraryIn(part["plugin"]), {}};
  if (part.has("against")) builds.against = libraryIn(part["against"]);
  return builds;
}

recording_t recordingIn(const Part& part) {
  recording_t recording;
  recording.name = part["name"].text();
  recording.plugin = part["plugin"].text();
  recording.chain = part["chain"].text();
  recording.run = part["run"].text();
  for (const Part& file : part["files"].elements()) recording.files.push_back(file.count());
  recording.messages = part["messages"].count();
  recording.other_direction = part["other_direction"].count();
  recording.gaps = part["gaps"].count();
  recording.lost = part["lost_in_gaps"].count();
  if (const Part counts = part["counts"]; !counts.isNull()) {
    recording.counts = {counts["seen"].count(), counts["recorded"].count(),
                        counts["filtered"].count(), counts["lost"].count()};
  }
  recording.ended = part["ended"].flag() ? 1 : 0;
  recording.left_over = part["bytes_left_over"].count();
  recording.one_in = part["one_in"].count();
  for (const Part& path : part["omitted"].elements()) recording.omitted.push_back(path.text());
  return recording;
}

std::vector<file_range_t> filesIn(const Part& part) {
  std::vector<file_range_t> all;
  for (const Part& files : part.elements()) {
    all.push_back({files["name"].text(), files["first"].count(), files["last"].count()});
  }
  return all;
}

recordings_part_t recordingsIn(const Part& part) {
  recordings_part_t recordings;
  for (const Part& recording : part["recordings"].elements()) {
    recordings.all.push_back(recordingIn(recording));
  }
  recordings.read = filesIn(part["files_read"]);
  recordings.deleted = filesIn(part["deleted_files"]);
  recordings.headless = part["headless_bytes"].count();
  return recordings;
}

class Merger {
 public:
  void add(const Part& part);
  [[nodiscard]] std::string json() const;

 private:
  void addBuilds(const Part& part);
  void addKinds(const Part& part);
  void addReasons(const Part& part);
  void addChannels(const Part& part);
  void addPrinted(const Part& part);
  void addTimes(const Part& part);
  void addEvents(const Part& part);

  std::string first_; // place of the first summary; empty: none yet
  bool complete_ = true;
  std::uint64_t read_ = 0;
  std::uint64_t out_ = 0;
  std::chrono::nanoseconds elapsed_{};
  std::optional<std::int64_t> blocks_ = 0;
  Summary summary_;
  PrintedLines printed_;
  Recordings recordings_;
  Recordings event_recordings_;
  std::optional<pairing_t> pairing_;
};

void Merger::add(const Part& part) {
  addBuilds(part);
  complete_ = complete_ && part["complete"].flag();
  addKinds(part);
  addReasons(part);
  read_ += part["read"].count();
  out_ += part["reached"].count();
  const Part blocks = part["blocks_live"];
  if (blocks.isNull()) blocks_.reset();
  if (blocks_) *blocks_ += blocks.number();
  addChannels(part);
  addPrinted(part);
  addTimes(part);
  recordings_.add(recordingsIn(part));
  addEvents(part);
}

// Another build may count otherwise, so one run could not have had both parts.
void Merger::addBuilds(const Part& part) {
  builds_t builds = buildsIn(part);
  if (first_.empty()) {
    first_ = part.place();
    summary_.takeBuilds(std::move(builds));
    return;
  }
  const builds_t& known = summary_.builds();
  const auto other = [&](const char* what) {
    refuse(part.place(), std::string("another ") + what + " than in " + first_);
  };
  if (builds.tool != known.tool) other("build of the tool");
  if (builds.plugin.sha256 != known.plugin.sha256) other("plug-in");
  if (builds.against.value_or(file_identity_t{}).sha256 !=
      known.against.value_or(file_identity_t{}).sha256) {
    other("build to compare with");
  }
}

void Merger::addKinds(const Part& part) {
  for (std::size_t i = 0; i < KINDS; ++i) {
    const Kind kind = static_cast<Kind>(i);
    const Part outcomes = part["kinds"][nameOf(kind)];
    for (const Outcome outcome : {Outcome::CONVERTED, Outcome::PASSED, Outcome::DROPPED}) {
      summary_.add(kind, outcome, outcomes[nameOf(outcome)].count());
    }
  }
  summary_.add(Kind::NONE, Outcome::MALFORMED, part[nameOf(Outcome::MALFORMED)].count());
}

// In the order of their first messages, which come after those of the earlier parts.
void Merger::addReasons(const Part& part) {
  for (const Part& reason : part["reasons"].elements()) {
    summary_.addReason({reason["reason"].text(), reason["key"].text(), reason["count"].count(),
                        read_ + reason["number"].count(), reason["first"].text()});
  }
}

void Merger::addChannels(const Part& part) {
  const Part channels = part["channels"];
  for (const auto& [channel, events] : channels.content<map_t>()) {
    const std::string name = text_or_empty(channel.get<const char*>());
    summary_.addEvents(name, Part(events, part.place(), "channels").count());
  }
}

void Merger::addPrinted(const Part& part) {
  for (const Part& line : part["printed"].elements()) {
    printed_.addLine(line["text"].text(), line.has("first") ? line["first"].text() : "",
                     line["count"].count());
  }
  printed_.addOthers(part["printed_otherwise"].count());
}

void Merger::addTimes(const Part& part) {
  elapsed_ += std::chrono::nanoseconds(std::llround(part["seconds"].amount() * 1e9));
  for (const Part& entry : part["batches"]["classes"].elements()) {
    const std::vector<Part> pair = entry.elements();
    if (pair.size() != 2) refuse(part.place(), "a summary with a wrong value in batches.classes");
    summary_.addBatches(std::chrono::nanoseconds(pair[0].number()), pair[1].count());
  }
}

void Merger::addEvents(const Part& part) {
  if (!part.has("events")) return;
  const Part events = part["events"];
  if (!pairing_) pairing_.emplace(pairing_t{event_recordings_});
  pairing_->compared += events["compared"].count();
  pairing_->different += events["different"].count();
  for (std::size_t i = 0; i < UNPAIRED; ++i) {
    pairing_->unpaired[i] += events["not_compared"][nameOf(static_cast<Unpaired>(i))].count();
  }
  event_recordings_.add(recordingsIn(events));
}

std::string Merger::json() const {
  return summaryJson(summary_, {read_, out_, elapsed_, blocks_, recordings_, pairing_, complete_},
                     printed_);
}

// The whole of a summary, of a version that this program knows.
data_t summaryIn(JsonReader& reader, const record_t& line) {
  try {
    data_t summary = reader.parseValue(line.line);
    const std::int64_t version = Part(summary, line.place(), "")["version"].number();
    if (version != SUMMARY_VERSION) {
      refuse(line.place(), "a summary of version " + std::to_string(version) +
                               ", this program knows version " + std::to_string(SUMMARY_VERSION));
    }
    return summary;
  } catch (const MalformedJson& error) {
    refuse(line.place(), std::string("a summary that is cut or damaged: ") + error.what());
  }
}

} // namespace

std::string mergedSummaries(const std::vector<input_t>& inputs) {
  Merger merger;
  JsonReader reader;
  for (const input_t& input : inputs) {
    LineReader lines({input}, {});
    bool has_summary = false;
    for (record_t line; lines.next(line);) {
      if (!line.line.starts_with(SUMMARY_BEGIN)) continue;
      const data_t summary = summaryIn(reader, line);
      const std::string place = line.place();
      merger.add(Part(summary, place, ""));
      has_summary = true;
    }
    if (!has_summary) refuse(input.name, "no summary, which is a line that --summary=json writes");
  }
  return merger.json();
}

} // namespace com::velanto::connectivity::tools
