#include "tools/replay/input/recording_files.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/values.hpp"
#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {

namespace {

using tools::recording_file_t;

std::vector<std::string> namesOf(const std::vector<recording_file_t>& files) {
  std::vector<std::string> names;
  names.reserve(files.size());
  for (const recording_file_t& file : files) names.push_back(file.path.substr(file.folder.size()));
  return names;
}

} // namespace

TEST(RecordingFilesTest, NamesOfFilesAreTold) {
  struct row_t {
    const char* path;
    const char* folder;
    const char* name;
    unsigned number; // 0: no recording's file
  };
  for (const row_t& row : {row_t{"r/before.000001.ndjson", "r/", "before", 1},
                           {"a.b.000020.ndjson.gz", "", "a.b", 20},
                           {"/r/a.000003.ndjson.zst", "/r/", "a", 3},
                           {"a.1234567.ndjson", "", "a", 1234567},
                           {"a.00001.ndjson", "", "", 0},
                           {"a.000000.ndjson", "", "", 0},
                           {"a.00000x.ndjson", "", "", 0},
                           {".000001.ndjson", "", "", 0},
                           {"a.000001.ndjson.bz2", "", "", 0},
                           {"a.000001/events.ndjson", "", "", 0}}) {
    const auto file = tools::recordingFile(row.path);
    EXPECT_EQ(file.has_value(), row.number != 0) << row.path;
    if (!file) continue;
    EXPECT_EQ(file->folder, row.folder) << row.path;
    EXPECT_EQ(file->name, row.name) << row.path;
    EXPECT_EQ(file->number, row.number) << row.path;
  }
}

TEST(RecordingFilesTest, FilesComeByNameAndNumber) {
  const TemporaryFolder folder;
  for (const char* name : {"b.000001.ndjson", "a.1000000.ndjson", "a.000009.ndjson.gz", "a.lock",
                           "a.000002.ndjson", "a.000002.ndjson.gz", "events.ndjson"}) {
    folder.write(name, "");
  }
  EXPECT_EQ(namesOf(tools::recordingFilesIn(folder.path(""))),
            (std::vector<std::string>{"a.000002.ndjson", "a.000009.ndjson.gz", "a.1000000.ndjson",
                                      "b.000001.ndjson"}));
}

TEST(RecordingFilesTest, OneOfSeveralRecordingsIsChosenByName) {
  const TemporaryFolder folder;
  const std::string path = folder.path("rec");
  std::filesystem::create_directory(path);
  const auto error = [&path] {
    return errorOf([&] { static_cast<void>(tools::recordingAt(path)); });
  };
  EXPECT_EQ(error(), path + " has no recording, no file NAME.000001.ndjson");
  folder.write("rec/day.ndjson.gz", "");
  EXPECT_EQ(error(), path + " has no recording, no file NAME.000001.ndjson; for its other files: " +
                         path + "/*.ndjson.gz");
  folder.write("rec/before.000001.ndjson", "");
  EXPECT_EQ(namesOf(tools::recordingAt(path)), std::vector<std::string>{"before.000001.ndjson"});
  folder.write("rec/after.000001.ndjson", "");
  EXPECT_EQ(error(),
            path + " has several recordings, choose one: " + path + "/after, " + path + "/before");
  EXPECT_EQ(namesOf(tools::recordingAt(path + "/after")),
            std::vector<std::string>{"after.000001.ndjson"});
  EXPECT_TRUE(tools::recordingAt(path + "/between").empty());
  EXPECT_TRUE(tools::recordingAt(folder.path("elsewhere/after")).empty());
}

} // namespace com::velanto::connectivity::test
