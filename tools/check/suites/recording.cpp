// The files of a recorder: what the configuration asks for is in them, and nothing is lost silently.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "tools/check/check_fixture.hpp"
#include "tools/check/comparison.hpp"
#include "tools/check/examples.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t MEBIBYTE = 1 << 20;

std::vector<fs::path> filesIn(const std::string& folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() == ".ndjson") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::int64_t numberAt(const data_t& map, const char* key) {
  const data_t* const found = find(map, key);
  return found != nullptr && found->type_tag() == VLT_TAG_INTEGER ? found->get<std::int64_t>() : -1;
}

// The files of one recorder's life, added up; its last foot has the counts.
struct recording_t {
  std::int64_t files = 0;
  std::int64_t heads = 0; // of these files
  std::int64_t recorded = 0;
  std::int64_t lost = 0; // in gaps
  data_t foot;           // the last line's; empty when that is none
  std::string text;
};

recording_t recordingIn(const std::string& folder) {
  recording_t recording;
  JsonReader reader;
  for (const fs::path& path : filesIn(folder)) {
    ++recording.files;
    std::ifstream file(path);
    bool first = true;
    for (std::string line; std::getline(file, line); first = false) {
      recording.text += line + "\n";
      const data_t read = reader.parseValue(line);
      if (find(read, "recorded") != nullptr) ++recording.recorded;
      const data_t* const about = find(read, "recording");
      if (first && about != nullptr && find(*about, "head") != nullptr) ++recording.heads;
      const data_t* const gap = about == nullptr ? nullptr : find(*about, "gap");
      if (gap != nullptr) recording.lost += numberAt(*gap, "lost");
      const data_t* const foot = about == nullptr ? nullptr : find(*about, "foot");
      recording.foot = foot == nullptr ? data_t() : data_t(*foot);
    }
  }
  return recording;
}

// A recorder with the folder of its check and these settings more.
class Recorder {
 public:
  explicit Recorder(Trial& trial, const char* settings = "{}", const char* name = PLUGIN_NAME)
      : library_(load(trial)), plugin_(trial, library_, configured(trial, settings), name) {
    plugin_.link();
    plugin_.host.moves_out = false;
    plugin_.transport.moves_out = false;
    trial.equal("start", 0, plugin_.start());
    trial.equal("hostReady", 0, plugin_.hostReady());
  }

  // Towards the host and towards the transport, `times` times each.
  void send(Trial& trial, std::vector<Message>& batch, int times = 1) {
    int failures = 0;
    for (int i = 0; i < times; ++i) {
      failures += plugin_.towardsHost(batch);
      failures += plugin_.towardsTransport(batch);
      plugin_.host.calls.clear();
      plugin_.transport.calls.clear();
    }
    trial.equal("batches that failed", 0, failures);
  }
  void end(Trial& trial) {
    trial.equal("shutdown", 0, plugin_.shutdown());
    trial.equal("destroy", 0, plugin_.destroy());
  }

 private:
  PluginLibrary library_;
  Codec plugin_;
};

std::vector<Message> examples() {
  std::vector<Message> batch;
  for (const line_t& example : exampleLines()) batch.push_back(notificationOf(example));
  return batch;
}

// Expects each message in the files or in the counts of the foot.
void expectCounted(Trial& trial, const recording_t& recording, std::size_t sent) {
  trial.equal("heads at the beginnings of files", recording.files, recording.heads);
  trial.equal("seen", sent, numberAt(recording.foot, "seen"));
  trial.equal("recorded, as the foot says", recording.recorded,
              numberAt(recording.foot, "recorded"));
  trial.equal("lost in gaps, as the foot says", recording.lost, numberAt(recording.foot, "lost"));
  trial.equal("recorded + filtered + lost", sent,
              numberAt(recording.foot, "recorded") + numberAt(recording.foot, "filtered") +
                  numberAt(recording.foot, "lost"));
}

// Records examples with these settings and returns the files.
recording_t record(Trial& trial, const char* settings, int times = 1) {
  std::vector<Message> batch = examples();
  Recorder recorder(trial, settings);
  recorder.send(trial, batch, times);
  recorder.end(trial);
  recording_t recording = recordingIn(trial.folder());
  expectCounted(trial, recording, 2 * batch.size() * static_cast<std::size_t>(times));
  return recording;
}

void everyMessage(Trial& trial) {
  const recording_t recording = record(trial, "{}");
  trial.equal("files", 1, recording.files);
  trial.equal("messages in the file", 2 * exampleLines().size(), recording.recorded);
}

void readsBack(Trial& trial) {
  constexpr std::uint32_t NEWER = 77;
  std::vector<Message> batch = examples();
  for (std::uint32_t tag : {VLT_TAG_EMPTY, VLT_TAG_STRING, VLT_TAG_BORROWED_STRING}) {
    batch.push_back(notification(EVENT_PATH, bare(tag)));
  }
  batch.push_back(notification(EVENT_PATH, decimal(0x8000000000000001)));
  batch.push_back(notification(EVENT_PATH, buffer("\xff")));
  batch.push_back(notification(EVENT_PATH, borrowed("\xfe")));
  batch.push_back(notification(EVENT_PATH, bare(NEWER)));
  JsonReader reader;
  const char* const like_a_decimal = R"({"$": ["decimal", "00000000000000ff"]})";
  batch.push_back(notification(EVENT_PATH, reader.parseValue(like_a_decimal)));
  Recorder recorder(trial);
  recorder.send(trial, batch);
  recorder.end(trial);
  std::istringstream lines(recordingIn(trial.folder()).text);
  std::size_t records = 0;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with(R"({"recorded":)")) continue;
    const std::size_t i = records++ % batch.size();
    const auto found =
        findMismatch(batch[i], reader.parseMessage(line), "message " + std::to_string(i + 1));
    if (found) trial.holds(false, found->where, found->expected, found->actual);
  }
  trial.equal("messages in the file", 2 * batch.size(), records);
}

void underPressure(Trial& trial) { record(trial, R"({"maxFileMebibytes": 1})", 2000); }

void filters(Trial& trial) {
  const auto messages = static_cast<std::int64_t>(exampleLines().size());
  const recording_t recording = record(trial, R"({"directions": ["host"]})");
  trial.equal("messages of one direction", messages, recording.recorded);
  trial.equal("filtered messages", messages, numberAt(recording.foot, "filtered"));
}

void switchedOff(Trial& trial) {
  const std::string settings = R"({"whileFileExists": ")" + trial.folder() + R"(/on"})";
  std::vector<Message> batch = examples();
  Recorder recorder(trial, settings.c_str());
  recorder.send(trial, batch, 10);
  recorder.end(trial);
  trial.equal("files", 0, filesIn(trial.folder()).size());
}

std::uintmax_t sizeOf(const std::vector<fs::path>& files) {
  std::uintmax_t size = 0;
  for (const fs::path& path : files) {
    std::error_code gone; // the recorder has removed the file meanwhile
    const std::uintmax_t bytes = fs::file_size(path, gone);
    if (!gone) size += bytes;
  }
  return size;
}

// A busy machine may write so slowly that most messages are lost. So it goes on for seconds until
// the recorder has begun more files than it may keep.
void staysBelowItsBound(Trial& trial) {
  std::vector<Message> batch = examples();
  Recorder recorder(trial, R"({"maxFileMebibytes": 1, "maxFiles": 2, "whenFull": "ring"})");
  std::uintmax_t largest = 0;
  std::string last; // file, whose name has its number
  std::size_t rounds = 0;
  for (std::size_t begun = 0; rounds < 100 || (rounds < 500 && begun <= 3); ++rounds) {
    if (rounds >= 100) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    recorder.send(trial, batch, 20);
    const std::vector<fs::path> files = filesIn(trial.folder());
    largest = std::max(largest, sizeOf(files));
    if (!files.empty() && std::exchange(last, files.back()) != last) ++begun;
  }
  recorder.end(trial);
  trial.holds(largest <= 2 * MEBIBYTE, "bytes in the folder", "at most 2 MiB",
              std::to_string(largest));
  trial.equal("seen", rounds * 20 * 2 * batch.size(),
              numberAt(recordingIn(trial.folder()).foot, "seen"));
}

void ownFiles(Trial& trial) {
  std::vector<Message> batch = examples();
  Recorder first(trial);
  Recorder second(trial);
  first.send(trial, batch);
  second.send(trial, batch);
  second.end(trial);
  first.end(trial);
  const recording_t both = recordingIn(trial.folder());
  trial.equal("files", 2, both.files);
  trial.equal("heads", 2, both.heads);
  trial.equal("messages recorded", 4 * batch.size(), both.recorded);
}

void lostFolder(Trial& trial) {
  std::vector<Message> batch = examples();
  Recorder recorder(trial, R"({"maxFileMebibytes": 1})");
  recorder.send(trial, batch);
  // At once: while files are removed one by one, the recorder makes new ones.
  const fs::path gone = fs::path(trial.folder()) += ".gone";
  fs::rename(trial.folder(), gone);
  recorder.send(trial, batch, 1000);
  recorder.end(trial);
  fs::remove_all(gone);
}

void omits(Trial& trial) {
  std::vector<Message> batch;
  batch.push_back(plainEvent("1"));
  set(batch[0].getPayload(), "text", data_t("a secret"));
  Recorder recorder(trial, R"({"omit": ["payload.text"]})");
  recorder.send(trial, batch);
  recorder.end(trial);
  const recording_t recording = recordingIn(trial.folder());
  trial.equal("messages recorded", 2, recording.recorded);
  trial.holds(recording.text.find("secret") == std::string::npos, "omitted text", "not in the file",
              "in the file");
}

void refusesWrongSettings(Trial& trial) {
  Log log;
  const PluginLibrary library = load(trial);
  for (const char* const wrong : {"{}", R"({"recordingFolder": 7})", "[]"}) {
    const Codec recorder(trial, library, value(wrong));
    trial.equal(std::string(wrong) + ", created", false, recorder.made());
    trial.equal(std::string(wrong) + ", log lines", 1, log.take().size());
  }
}

void configurationMayVanish(Trial& trial) {
  const PluginLibrary library = load(trial);
  data_t settings = configured(trial, R"({"recordingName": "kept"})");
  std::string name = PLUGIN_NAME;
  Codec recorder(trial, library, settings, name.c_str());
  settings = bare(77); // frees the table; its place holds no map
  name.assign(name.size(), '?');
  recorder.link();
  trial.equal("start", 0, recorder.start());
  std::vector<Message> batch = examples();
  trial.equal("sendBatchTowardsHost", 0, recorder.towardsHost(batch));
  recorder.shutdown();
  recorder.destroy();
  const std::vector<fs::path> files = filesIn(trial.folder());
  if (!trial.equal("files", 1, files.size())) return;
  trial.equal("name of the file", "kept.000001.ndjson", files[0].filename().string());
}

const check_t RECORDING_CHECKS[] = {
    {"recording.every-message", "each message of both directions is in the file", "Recorders",
     everyMessage, Use::LOAD_RECORDER},
    {"recording.reads-back", "each message reads back as it was, whatever its kinds of values",
     "Recorders", readsBack, Use::LOAD_RECORDER},
    {"recording.under-pressure", "in a flood, seen is recorded, filtered and lost together",
     "Recorders", underPressure, Use::LOAD_RECORDER},
    {"recording.filters", "filtered messages are counted and not recorded", "Recorders", filters,
     Use::LOAD_RECORDER},
    {"recording.switched-off", "without its switch file, a recorder records nothing", "Recorders",
     switchedOff, Use::LOAD_RECORDER},
    {"recording.bound", "the files stay below the configured size at any time", "Recorders",
     staysBelowItsBound, Use::LOAD_RECORDER},
    {"recording.own-files", "two recorders of the same names have files of their own", "Recorders",
     ownFiles, Use::LOAD_RECORDER},
    {"recording.lost-folder", "messages pass when the folder vanishes", "Recorders", lostFolder,
     Use::LOAD_RECORDER},
    {"recording.omits", "an omitted text does not reach the disk", "Recorders", omits,
     Use::LOAD_RECORDER},
    {"recording.refuses", "wrong settings are refused with one line of the log", "Recorders",
     refusesWrongSettings, Use::LOAD_RECORDER},
    {"recording.may-vanish", "configuration and names may vanish when create has returned",
     "Recorders", configurationMayVanish, Use::LOAD_RECORDER},
};

} // namespace

suite_t recordingChecks() { return RECORDING_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
