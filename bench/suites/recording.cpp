// A codec with a recorder in front, over the mix: recording, filtering every message out, and
// switched off, beside the codec with an element in front that does nothing.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "bench/chain_contender.hpp"
#include "bench/corpus.hpp"
#include "bench/suites/suites.hpp"

namespace com::velanto::connectivity::bench {

namespace {

constexpr std::size_t MESSAGES = 1024;

// Where the recorders write: among the system's temporary files, removed with them.
class RecordingFolder {
 public:
  RecordingFolder() : path_(std::filesystem::temp_directory_path() / "ostrovia-bench.XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
  }
  RecordingFolder(const RecordingFolder&) = delete;
  RecordingFolder& operator=(const RecordingFolder&) = delete;
  ~RecordingFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] data_t settings(const char* key = nullptr, const char* content = nullptr) const {
    map_t settings;
    settings[data_t("recordingFolder")] = data_t(path_.c_str());
    settings[data_t("maxFiles")] = data_t(std::int64_t{2});
    if (key != nullptr) settings[data_t(key)] = data_t(content);
    return settings;
  }

  // A recorder that loses messages is faster than one that records them.
  void requireWhole() const {
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      std::ifstream file(entry.path());
      for (std::string line; std::getline(file, line);) {
        if (line.starts_with(R"({"recording":{"gap")")) {
          throw std::runtime_error("recording: messages were lost, its times mean nothing: " +
                                   line);
        }
      }
    }
  }

 private:
  std::string path_;
};

struct chain_t {
  const char* name;
  data_t settings; // of the recorder; empty: none
};

std::vector<chain_t> chains(const RecordingFolder& folder) {
  std::vector<chain_t> all;
  all.push_back({"codec", data_t()});
  all.push_back({"recording", folder.settings()});
  all.push_back({"filtered out", folder.settings("pathPrefix", "no such path")});
  all.push_back({"switched off", folder.settings("whileFileExists", "/no/such/file")});
  return all;
}

chain_libraries_t librariesOf(const options_t& options) {
  return {options.plugin,
          tools::PluginLibrary::defaultPath(tools::PluginLibrary::RECORDER_CLASS_NAME)};
}

group_t measure(const options_t& options, std::size_t batch) {
  const RecordingFolder folder;
  const lines_t lines = mixedNotifications(MESSAGES);
  Heat heat(options, "batches of " + std::to_string(batch), lines);
  for (const chain_t& chain : chains(folder)) {
    heat.withSame(chain.name, std::make_shared<ChainContender>(librariesOf(options), chain.settings,
                                                               lines, batch));
  }
  group_t group = heat.run(options.rounds);
  folder.requireWhole();
  return group;
}

} // namespace

suite_t measureRecording(const options_t& options) {
  suite_t suite{"recording", "ns per message", {}};
  for (const std::size_t batch : {LARGE_BATCH, std::size_t{16}, std::size_t{1}}) {
    suite.groups.push_back(measure(options, batch));
  }
  return suite;
}

suite_t measureRecordedBatches(const options_t& options) {
  constexpr std::size_t BATCH = 16;
  const RecordingFolder folder;
  const lines_t lines = mixedNotifications(MESSAGES);
  group_t group{"batches of 16", {}};
  std::vector<std::unique_ptr<ChainContender>> contenders;
  for (const chain_t& chain : chains(folder)) {
    group.results.push_back({chain.name, {}});
    contenders.push_back(
        std::make_unique<ChainContender>(librariesOf(options), chain.settings, lines, BATCH));
  }
  for (std::size_t round = 0; round < 2 * options.rounds; ++round) {
    for (const std::uint32_t i : orderOfRound(contenders.size(), round)) {
      const samples_t times = contenders[i]->timeBatches(orderOfRound(MESSAGES, round));
      group.results[i].samples.insert(group.results[i].samples.end(), times.begin(), times.end());
    }
  }
  folder.requireWhole();
  return {"recording, by batch", "ns per batch", {std::move(group)}};
}

} // namespace com::velanto::connectivity::bench
