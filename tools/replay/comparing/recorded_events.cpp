#include "tools/replay/comparing/recorded_events.hpp"

#include <algorithm>
#include <utility>

#include "ndjson/json_writer.hpp"
#include "tools/options/replay_options.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t FIRST_ROOM = std::size_t{64} << 10; // bytes
constexpr std::size_t MOST_ROOM = std::size_t{16} << 20;  // no recorder writes a line as long

// A remark for members without one: the reader takes only a whole line.
constexpr const char* ANY_REMARK =
    R"({"recorded":{"time":0,"number":1,"batch":1,"place":0,"of":1,"direction":"host"},)";

// The members of a recorded line after its remark, which holds no other object.
std::string membersOf(const std::string& line) {
  const std::size_t comma = line.find(',', line.find('}'));
  if (comma == std::string::npos) return "\"payload\":null";
  return line.substr(comma + 1, line.rfind('}') - comma - 1);
}

// A path of a difference without "event." and without the indices of lists.
std::string fieldOf(const std::string& path) {
  std::string field;
  bool inside = false; // of an index
  for (const char c : path.substr(path.find('.') + 1)) {
    inside = inside || c == '[';
    if (!inside) field += c;
    inside = inside && c != ']';
  }
  return field;
}

bool covers(const std::string& omitted, const std::string& field) {
  const bool is_full = omitted.starts_with("payload") || omitted.starts_with("metadata");
  const std::string place = is_full ? omitted : "payload." + omitted;
  return field == place || field.starts_with(place + ".");
}

} // namespace

const char* nameOf(Unpaired reason) noexcept {
  constexpr std::array<const char*, UNPAIRED> NAMES = {"no-remark", "no-batch", "part",
                                                       "no-message"};
  return NAMES[static_cast<std::size_t>(reason)];
}

const char* textOf(Unpaired reason) noexcept {
  constexpr std::array<const char*, UNPAIRED> TEXTS = {
      "lines that no recorder wrote",
      "messages of batches without recorded events",
      "messages and events of batches recorded in part",
      "events of batches without recorded messages",
  };
  return TEXTS[static_cast<std::size_t>(reason)];
}

RecordedEvents::RecordedEvents(const std::string& path, std::ostream& diagnostics)
    : diagnostics_(diagnostics),
      path_(path),
      writer_({}, JsonReader::MAX_EVENT_DEPTH),
      id_("id"),
      events_(path),
      comparer_(diagnostics, path) {}

void RecordedEvents::takeRemarks(std::string_view lines) {
  while (!lines.empty()) {
    const std::size_t end = lines.find('\n');
    static_cast<void>(input_.take(lines.substr(0, end), ""));
    lines.remove_prefix(end + 1);
  }
}

void RecordedEvents::take(const record_t& record) {
  if (!record.recorded) return leave(Unpaired::NO_REMARK);
  const std::string run = record.run == nullptr ? "" : *record.run;
  if (first_ && (run != run_ || first_->batch != record.recorded->batch ||
                 first_->direction != record.recorded->direction)) {
    compareBatch();
  }
  if (!first_) first_ = record.recorded;
  run_ = run;
  if (record.outcome != Outcome::MALFORMED) takeMessage(record);
  if (isLastOfBatch(record)) compareBatch();
}

void RecordedEvents::takeMessage(const record_t& record) {
  ++lines_;
  for (const Message& output : record.outputs) {
    std::string event = recordedFormOf(output);
    if (event.empty()) {
      --lines_; // the batch counts as one recorded in part
      leave(Unpaired::PART);
      continue;
    }
    batch_.push_back({record.place(), idOf(output), std::move(event), {}});
  }
  if (!record.outputs.empty()) return;
  std::string log;
  for (const log_line_t& line : record.log) log += (log.empty() ? "" : "\n") + line.text;
  batch_.push_back({record.place(), idOf(reader_.parseMessage(record.line)), {}, std::move(log)});
}

void RecordedEvents::compareBatch() {
  const std::optional<recorded_batch_t> found = events_.take(run_, *first_);
  own_whole_ = lines_ == first_->of;
  if (found) {
    std::vector<message_t> events;
    for (const recorded_line_t& line : found->lines) {
      events.push_back({line.place, idOf(eventAt(line)), membersOf(line.line), {}});
    }
    events_whole_ = found->isWhole();
    align(events, batch_);
  } else {
    const std::uint64_t one_in = input_.current() == nullptr ? 1 : input_.current()->one_in;
    compareWithNothing(events_.sawNothingOf(run_, *first_, one_in));
  }
  batch_.clear();
  first_.reset();
  lines_ = 0;
}

Message RecordedEvents::eventAt(const recorded_line_t& line) {
  try {
    return reader_.parseMessage(line.line);
  } catch (const MalformedJson& e) {
    throw ReplayError(EXIT_BAD_INPUT, line.place + ": " + e.what());
  }
}

// No event of the batch is recorded: production dropped all of it, if that `is_known`.
void RecordedEvents::compareWithNothing(bool is_known) {
  if (!is_known) return leave(Unpaired::NO_BATCH, batch_.size());
  events_whole_ = true;
  settle({}, batch_);
}

// Step (1): pairs of the same id, in the order of both sides; between them step (2).
void RecordedEvents::align(messages_t events, messages_t own) {
  std::size_t event_done = 0;
  std::size_t own_done = 0;
  for (std::size_t i = 0; i < events.size(); ++i) {
    const auto rest = own.subspan(own_done);
    const auto found = std::find_if(rest.begin(), rest.end(), [&](const message_t& message) {
      return !message.event.empty() && !message.id.empty() && message.id == events[i].id;
    });
    if (found == rest.end()) continue;
    const auto at = static_cast<std::size_t>(found - rest.begin());
    settle(events.subspan(event_done, i - event_done), rest.first(at));
    compare(&events[i], &rest[at]);
    event_done = i + 1;
    own_done += at + 1;
  }
  settle(events.subspan(event_done), own.subspan(own_done));
}

// Steps (2) and (3), for neighbours without a pair.
void RecordedEvents::settle(messages_t events, messages_t own) {
  std::vector<message_t*> more;
  for (message_t& event : events) {
    const auto dropped = std::find_if(own.begin(), own.end(), [&event](const message_t& message) {
      return message.event.empty() && !message.paired && !event.id.empty() &&
             message.id == event.id;
    });
    if (dropped == own.end()) {
      more.push_back(&event);
      continue;
    }
    dropped->paired = true;
    compare(&event, &*dropped);
  }
  std::vector<message_t*> made;
  for (message_t& message : own) {
    if (message.paired) continue;
    if (!message.event.empty()) {
      made.push_back(&message);
    } else if (events_whole_) {
      comparer_.countSame(); // both dropped it
    } else {
      leave(Unpaired::PART);
    }
  }
  if (own_whole_ && events_whole_ && more.size() == made.size()) {
    for (std::size_t i = 0; i < more.size(); ++i) compare(more[i], made[i]);
    return;
  }
  for (message_t* event : more) own_whole_ ? compare(event, nullptr) : leave(Unpaired::PART);
  for (message_t* message : made) events_whole_ ? compare(nullptr, message) : leave(Unpaired::PART);
}

// One of both may be missing.
void RecordedEvents::compare(const message_t* event, const message_t* own) {
  if (event != nullptr && own != nullptr && event->event == own->event) {
    return comparer_.countSame();
  }
  const auto value_of = [this](const message_t* side) {
    return side == nullptr ? std::nullopt : std::optional(valueOf(*side));
  };
  const std::optional<data_t> before = value_of(event);
  const std::optional<data_t> after = value_of(own);
  std::vector<difference_t> differences;
  if (before && after) {
    differences = differencesOf(*before, *after);
    std::erase_if(differences, [this](const difference_t& each) { return isOmitted(each); });
  }
  comparer_.compare({event == nullptr ? "" : event->place, before ? &*before : nullptr},
                    {own == nullptr ? "" : own->place, after ? &*after : nullptr}, differences);
}

// An event under the name "event", so that paths are those of golden runs; otherwise the log.
data_t RecordedEvents::valueOf(const message_t& message) {
  map_t value;
  if (message.event.empty()) {
    value[data_t("log")] = data_t(message.log.c_str());
    return value;
  }
  Message event = reader_.parseMessage(ANY_REMARK + message.event + "}");
  map_t members;
  members[data_t("metadata")] = std::move(event.getMetadataMap());
  members[data_t("payload")] = std::move(event.getPayload());
  value[data_t("event")] = std::move(members);
  return value;
}

// Empty for a message that is too large for a recorder, too. A recorder does not write deep ones,
// either, but the other side may have an event that is less deep, or none.
std::string RecordedEvents::recordedFormOf(const Message& message) {
  for (std::size_t size = std::max(room_.size(), FIRST_ROOM); size <= MOST_ROOM; size *= 2) {
    room_.resize(size);
    char* const end = writer_.write(message, room_.data(), room_.data() + room_.size());
    if (end != nullptr) return {room_.data(), end};
  }
  return "";
}

// A recorder replaced the text, so the difference says nothing.
bool RecordedEvents::isOmitted(const difference_t& difference) const {
  const std::string field = fieldOf(difference.path);
  const auto is_omitted_in = [&field](const Recordings& recordings) {
    return std::any_of(
        recordings.all().begin(), recordings.all().end(), [&field](const recording_t& recording) {
          return std::any_of(recording.omitted.begin(), recording.omitted.end(),
                             [&field](const std::string& path) { return covers(path, field); });
        });
  };
  return is_omitted_in(input_) || is_omitted_in(events_.recordings());
}

std::string RecordedEvents::idOf(const Message& message) const {
  const data_t& payload = message.getPayload();
  if (payload.type_tag() != VLT_TAG_MAP) return "";
  const data_t* const id = payload.get<map_t>().find_value(id_);
  return id == nullptr ? "" : toJson(*id);
}

pairing_t RecordedEvents::figures() const {
  return {events_.recordings(), comparer_.compared(), comparer_.different(), unpaired_};
}

exit_status_t RecordedEvents::finish() {
  if (first_) compareBatch();
  leave(Unpaired::NO_MESSAGE, events_.finish());
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < UNPAIRED; ++i) {
    sum += unpaired_[i];
    if (unpaired_[i] == 0) continue;
    diagnostics_ << REPLAY_NAME << ": not compared: " << unpaired_[i] << " "
                 << textOf(static_cast<Unpaired>(i)) << "\n";
  }
  if (comparer_.compared() > 0 || sum == 0) return comparer_.report();
  diagnostics_ << REPLAY_NAME << ": no message could be compared with " + path_ + "\n";
  return EXIT_DIFFERENT;
}

} // namespace com::velanto::connectivity::tools
