#include "fuzz/plugin/samples.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>

#include "fuzz/finding.hpp"
#include "ndjson/json_reader.hpp"

namespace com::velanto::connectivity::fuzz {

namespace {

std::vector<std::filesystem::path> files() {
  std::vector<std::filesystem::path> result;
  for (const auto& entry : std::filesystem::directory_iterator(VLT_FUZZ_SAMPLES)) {
    const std::filesystem::path& path = entry.path();
    if (path.extension() == ".ndjson" && path.filename() != "site-day.ndjson") {
      result.push_back(path);
    }
  }
  std::sort(result.begin(), result.end());
  return result;
}

void collectWords(const model::table_t& table, std::set<std::string>& words);

void collectWords(const model::value_t& value, std::set<std::string>& words) {
  if (isText(value)) words.insert(value.text);
  for (const model::value_t& element : value.elements) collectWords(element, words);
  collectWords(value.table, words);
}

void collectWords(const model::table_t& table, std::set<std::string>& words) {
  for (const model::slot_t& slot : table.slots) {
    collectWords(slot.key, words);
    collectWords(slot.value, words);
  }
}

samples_t read() {
  samples_t result;
  // Also words of the codec's configuration and events that no sample has.
  std::set<std::string> words = {"measurementSplittingChannel",
                                 "towardsHostChannelPrefix",
                                 "tenantId",
                                 "vlt.type",
                                 "vlt.channel",
                                 "params",
                                 "position"};
  JsonReader reader;
  for (const std::filesystem::path& path : files()) {
    std::ifstream lines(path);
    auto& messages = path.filename() == "failing.ndjson" ? result.failing : result.messages;
    for (std::string line; std::getline(lines, line);) {
      const Message message = reader.parseMessage(line);
      const vlt_underlying_message_t bytes{
          *message.getPayload().underlying(),
          const_cast<vlt_underlying_map_table_t*>(message.getMetadataMap().table())};
      const message_t& added = messages.emplace_back(modelOf(bytes));
      collectWords(added.payload, words);
      collectWords(added.metadata, words);
    }
  }
  if (result.messages.empty() || result.failing.empty())
    reportFinding("no samples in " VLT_FUZZ_SAMPLES);
  result.words.assign(words.begin(), words.end());
  return result;
}

} // namespace

const samples_t& samples() {
  static const samples_t SAMPLES = read();
  return SAMPLES;
}

} // namespace com::velanto::connectivity::fuzz
