// The vocabulary of the recorder's tests: a folder of their own, a recorder between two links, and
// the lines that it leaves.
#ifndef VLT_TESTS_RECORDER_RECORDER_FIXTURE_HPP
#define VLT_TESTS_RECORDER_RECORDER_FIXTURE_HPP

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "plugin/plugin_constructor_parameters.hpp"
#include "recorder/ostrovia_notifications_recorder.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"
#include "tests/support/waiting.hpp"
#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {

using plugins::pulsar::OstroviaNotificationsRecorder;
using texts_t = std::vector<std::string>;

// The lines of a file, each without its end; an unfinished one last.
inline texts_t linesOf(const std::filesystem::path& path) {
  std::ifstream file(path);
  texts_t lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

// The number after "NAME": in a line; a test failure by exception without one.
inline std::uint64_t numberIn(const std::string& line, const std::string& name) {
  const std::string key = "\"" + name + "\":";
  const std::size_t at = line.find(key);
  if (at == std::string::npos) throw std::out_of_range("no " + name + " in " + line);
  return std::stoull(line.substr(at + key.size()));
}

inline texts_t startingWith(const std::string& begin, const texts_t& lines) {
  texts_t selected;
  std::copy_if(lines.begin(), lines.end(), std::back_inserter(selected),
               [&](const std::string& line) { return line.starts_with(begin); });
  return selected;
}

// A temporary folder with recordings.
class RecordingFolder {
 public:
  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
  // The names of its recordings, in order.
  [[nodiscard]] texts_t recordings() const {
    texts_t names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      if (entry.path().extension() == ".ndjson") names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  // All lines of all recordings, in order.
  [[nodiscard]] texts_t lines() const {
    texts_t all;
    for (const std::string& name : recordings()) {
      for (const std::string& line : linesOf(path_ / name)) all.push_back(line);
    }
    return all;
  }
  [[nodiscard]] texts_t messages() const { return startingWith(R"({"recorded":)", lines()); }
  [[nodiscard]] texts_t gaps() const { return startingWith(R"({"recording":{"gap":)", lines()); }
  // The counts of the last foot.
  [[nodiscard]] recorder::counts_t counts() const {
    const std::string foot = startingWith(R"({"recording":{"foot":)", lines()).back();
    return {numberIn(foot, "seen"), numberIn(foot, "recorded"), numberIn(foot, "filtered"),
            numberIn(foot, "lost")};
  }

 private:
  TemporaryFolder folder_;
  std::filesystem::path path_ = folder_.path("");
};

// A link that does what a test asks for.
class AnyLink final : public HostSide, public TransportSide {
 public:
  using use_t = std::function<void(Message*, Message*)>;
  explicit AnyLink(use_t use) : use_(std::move(use)) {}
  void sendBatchTowardsHost(Message* start, Message* end) override { use_(start, end); }
  void sendBatchTowardsTransport(Message* start, Message* end) override { use_(start, end); }

 private:
  use_t use_;
};

class RecorderFixture : public HostFixture {
 protected:
  // A recorder with these settings, the folder added.
  template <class... KeysAndValues>
  std::unique_ptr<OstroviaNotificationsRecorder> make(KeysAndValues&&... settings) {
    return makeNamed("before", mapOf("recordingFolder", text(folder_.path().c_str()),
                                     std::forward<KeysAndValues>(settings)...));
  }
  std::unique_ptr<OstroviaNotificationsRecorder> makeNamed(const char* name,
                                                           const map_t& settings) {
    return std::make_unique<OstroviaNotificationsRecorder>(
        PluginConstructorParameters(name, "site", settings, handle_, nullptr));
  }

  static Message event(const char* content) {
    return notification("tenant/subscription/events/1", mapOf("text", text(content)));
  }
  static void send(OstroviaNotificationsRecorder& recorder, Message&& message) {
    recorder.sendBatchTowardsHost(&message, &message + 1);
  }
  static void sendBatch(OstroviaNotificationsRecorder& recorder, std::size_t messages) {
    std::vector<Message> batch;
    for (std::size_t i = 0; i < messages; ++i) batch.push_back(event("t"));
    recorder.sendBatchTowardsHost(batch.data(), batch.data() + batch.size());
  }

  RecordingFolder folder_;
  void* handle_ = nullptr; // for the status
};

} // namespace com::velanto::connectivity::test

#endif
