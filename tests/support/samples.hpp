// The notifications of samples/: every line of every file there, the bad ones too.
#ifndef VLT_TESTS_SUPPORT_SAMPLES_HPP
#define VLT_TESTS_SUPPORT_SAMPLES_HPP

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::test {

struct sample_t {
  std::string place; // "alarms.ndjson:3"
  Message message;
};

// In the order of the files' names. VLT_SAMPLES names the folder.
inline std::vector<sample_t> readSamples() {
  std::vector<std::filesystem::path> files;
  for (const auto& file : std::filesystem::directory_iterator(VLT_SAMPLES)) {
    if (file.path().extension() == ".ndjson") files.push_back(file.path());
  }
  if (files.empty()) throw std::runtime_error("no samples in " VLT_SAMPLES);
  std::sort(files.begin(), files.end());
  JsonReader reader;
  std::vector<sample_t> samples;
  for (const std::filesystem::path& path : files) {
    std::ifstream file(path);
    std::size_t number = 0;
    for (std::string line; std::getline(file, line);) {
      std::string place = path.filename().string() + ":" + std::to_string(++number);
      samples.push_back({std::move(place), reader.parseMessage(line)});
    }
  }
  return samples;
}

// A message of its own with the same content.
inline Message copyOf(const Message& message) {
  return Message(data_t(message.getPayload()), message.getMetadataMap().copy());
}

} // namespace com::velanto::connectivity::test

#endif
