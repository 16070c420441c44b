// Runs the data files beside this source: each line is a test of its own, named FILE.NAME, and a
// line that cannot be read ends the program before any test runs.
//
//   (1) parse and check every file  (2) register its cases  (3) run what the filter selects
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <set>

#include "ndjson/json_reader.hpp"
#include "tests/conformance/case_runner.hpp"

namespace com::velanto::connectivity::test {
namespace {

struct line_t {
  std::string name;
  place_t place;
  data_t json;
};

struct file_t {
  std::string suite; // the file's name without its ending
  std::vector<line_t> lines;
};

line_t readLine(JsonReader& reader, const std::string& text, const place_t& place) {
  try {
    data_t json = reader.parseValue(text);
    return {readCase(json).name, place, std::move(json)};
  } catch (const std::exception& e) {
    throw BadCase(place.file + ":" + std::to_string(place.line) + ": " + e.what());
  }
}

file_t readFile(const std::filesystem::path& path) {
  std::ifstream input(path);
  JsonReader reader;
  file_t file{path.stem().string(), {}};
  std::set<std::string> names;
  std::string text;
  for (place_t place{path.string(), 1}; std::getline(input, text); ++place.line) {
    file.lines.push_back(readLine(reader, text, place));
    if (names.insert(file.lines.back().name).second) continue;
    throw BadCase(place.file + ":" + std::to_string(place.line) + ": repeated name " +
                  file.lines.back().name);
  }
  if (!input.eof()) throw BadCase(path.string() + ": cannot be read");
  if (file.lines.empty()) throw BadCase(path.string() + ": no case in it");
  return file;
}

std::vector<file_t> readFiles(const std::filesystem::path& folder) {
  std::set<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".ndjson") paths.insert(entry.path());
  }
  std::vector<file_t> files;
  files.reserve(paths.size());
  for (const auto& path : paths) files.push_back(readFile(path));
  return files;
}

TEST(Harness, FilesHoldAtLeast250Cases) {
  std::size_t count = 0;
  for (const file_t& file : readFiles(VLT_CONFORMANCE_DATA)) count += file.lines.size();
  EXPECT_GE(count, 250U) << "cases have been lost";
}

void registerTest(const PluginLibrary& library, const std::string& suite, const line_t& line) {
  ::testing::RegisterTest(
      suite.c_str(), line.name.c_str(), nullptr, nullptr, line.place.file.c_str(), line.place.line,
      [&library, &line]() { return new CaseRunner(library, line.json, line.place); });
}

// `library` and `files` outlive the tests.
void registerTests(const PluginLibrary& library, const std::vector<file_t>& files) {
  for (const file_t& file : files) {
    for (const line_t& line : file.lines) registerTest(library, file.suite, line);
  }
}

// A filter that selects nothing, because a file was renamed say, must not pass for success.
int runSelected() {
  const int result = RUN_ALL_TESTS();
  if (::testing::UnitTest::GetInstance()->test_to_run_count() > 0) return result;
  std::cerr << "no test matches the filter\n";
  return 1;
}

} // namespace
} // namespace com::velanto::connectivity::test

int main(int argc, char** argv) {
  using namespace com::velanto::connectivity::test;
  ::testing::InitGoogleTest(&argc, argv);
  try {
    const PluginLibrary library(VLT_PLUGIN_PATH);
    const std::vector<file_t> files = readFiles(VLT_CONFORMANCE_DATA);
    registerTests(library, files);
    return runSelected();
  } catch (const std::exception& e) {
    std::cerr << e.what() << '\n';
    return 1;
  }
}
