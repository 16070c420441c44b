#include "tools/replay/summary/recordings.hpp"

#include "tools/record/columns.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t LINE_COLUMNS = 79;

std::string number(std::uint64_t value) { return std::to_string(value); }

void appendLine(std::string& out, const std::string& line) {
  out += cutBehind(line, LINE_COLUMNS) + "\n";
}

// "1-4, 6"
std::string rangesOf(const std::vector<std::uint64_t>& numbers) {
  std::string text;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    std::size_t last = i;
    while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
    text += (text.empty() ? "" : ", ") + number(numbers[i]);
    if (last > i) text += "-" + number(numbers[last]);
    i = last;
  }
  return text;
}

std::string joined(const std::vector<std::string>& texts) {
  std::string all;
  for (const std::string& text : texts) all += (all.empty() ? "" : ", ") + text;
  return all;
}

std::string countsText(const recording_t& recording) {
  std::string text = "  no counts yet";
  if (recording.counts) {
    text = "  seen " + number(recording.counts->seen) + ", recorded " +
           number(recording.counts->recorded) + ", filtered " + number(recording.counts->filtered) +
           ", lost " + number(recording.counts->lost);
  }
  if (recording.gaps > 0) {
    text += "; " + number(recording.gaps) + (recording.gaps == 1 ? " gap of " : " gaps of ") +
            number(recording.lost);
  }
  return text + (recording.ended == 0 ? "; no end" : "");
}

void appendRecording(std::string& out, const recording_t& recording) {
  appendLine(out, recording.name + ": " + number(recording.messages) + " messages, files " +
                      rangesOf(recording.files) + ", run " + recording.run);
  appendLine(out, "  recorder " + recording.plugin + " in chain " + recording.chain);
  appendLine(out, countsText(recording));
  if (recording.left_over > 0) {
    appendLine(out, "  " + number(recording.left_over) + " bytes left over after the last line");
  }
  if (recording.one_in > 1) {
    appendLine(out, "  a sample: one in " + number(recording.one_in) + " batches");
  }
  if (!recording.omitted.empty()) appendLine(out, "  omitted: " + joined(recording.omitted));
  if (recording.other_direction > 0) {
    appendLine(out, "  not sent: " + number(recording.other_direction) +
                        " messages of the other direction");
  }
}

void writeCounts(JsonLine& line, const recorder_counts_t& counts) {
  line.item("seen").number(counts.seen);
  line.item("recorded").number(counts.recorded);
  line.item("filtered").number(counts.filtered);
  line.item("lost").number(counts.lost);
}

void writeRecording(JsonLine& line, const recording_t& recording) {
  line.item(nullptr).open('{');
  line.item("name").text(recording.name);
  line.item("plugin").text(recording.plugin);
  line.item("chain").text(recording.chain);
  line.item("run").text(recording.run);
  line.item("files").open('[');
  for (const std::uint64_t file : recording.files) line.item(nullptr).number(file);
  line.close(']');
  line.item("messages").number(recording.messages);
  line.item("other_direction").number(recording.other_direction);
  line.item("gaps").number(recording.gaps);
  line.item("lost_in_gaps").number(recording.lost);
  line.item("counts");
  if (recording.counts) {
    line.open('{');
    writeCounts(line, *recording.counts);
    line.close('}');
  } else {
    line.raw("null");
  }
  line.item("ended").raw(recording.ended == 0 ? "false" : "true");
  line.item("bytes_left_over").number(recording.left_over);
  line.item("one_in").number(recording.one_in);
  line.item("omitted").open('[');
  for (const std::string& path : recording.omitted) line.item(nullptr).text(path);
  line.close(']');
  line.close('}');
}

void writeFiles(JsonLine& line, const file_range_t& files) {
  line.item(nullptr).open('{');
  line.item("name").text(files.name);
  line.item("first").number(files.first);
  line.item("last").number(files.last);
  line.close('}');
}

void appendRecordings(std::string& out, const Recordings& recordings) {
  for (const recording_t& recording : recordings.all()) appendRecording(out, recording);
  for (const file_range_t& files : recordings.deleted()) {
    const std::string range = files.first == files.last
                                  ? "file " + number(files.first)
                                  : "files " + number(files.first) + "-" + number(files.last);
    appendLine(out, files.name + ": " + range + " deleted before the tool read them");
  }
  if (recordings.headless() > 0) {
    appendLine(out, number(recordings.headless()) + " bytes of files without a whole line");
  }
}

void writeRecordings(JsonLine& line, const Recordings& recordings) {
  line.item("recordings").open('[');
  for (const recording_t& recording : recordings.all()) writeRecording(line, recording);
  line.close(']');
  line.item("files_read").open('[');
  for (const auto& [name, files] : recordings.read()) writeFiles(line, files);
  line.close(']');
  line.item("deleted_files").open('[');
  for (const file_range_t& files : recordings.deleted()) writeFiles(line, files);
  line.close(']');
  line.item("headless_bytes").number(recordings.headless());
}

} // namespace

std::string recordingsText(const Recordings& recordings, const std::optional<pairing_t>& pairing) {
  std::string out;
  appendRecordings(out, recordings);
  if (!pairing) return out;
  appendRecordings(out, pairing->events);
  appendLine(out, "compared " + number(pairing->compared) + " messages with recorded events, " +
                      number(pairing->different) + " differ");
  return out;
}

void writeRecordings(JsonLine& line, const Recordings& recordings,
                     const std::optional<pairing_t>& pairing) {
  writeRecordings(line, recordings);
  if (!pairing) return;
  line.item("events").open('{');
  line.item("compared").number(pairing->compared);
  line.item("different").number(pairing->different);
  line.item("not_compared").open('{');
  for (std::size_t i = 0; i < UNPAIRED; ++i) {
    line.item(nameOf(static_cast<Unpaired>(i))).number(pairing->unpaired[i]);
  }
  line.close('}');
  writeRecordings(line, pairing->events);
  line.close('}');
}

} // namespace com::velanto::connectivity::tools
