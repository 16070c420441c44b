#include "recorder/recording_files.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/recorder/file_size_limit.hpp"
#include "tests/recorder/recorder_fixture.hpp"
#include "tests/support/allocations.hpp"

namespace com::velanto::connectivity::test {
namespace {

using recorder::DiskError;
using recorder::RecordingFiles;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr std::uint64_t MEBIBYTE = 1U << 20U;

class RecordingFilesTest : public HostFixture {
 protected:
  template <class... KeysAndValues>
  RecordingFiles make(KeysAndValues&&... settings) {
    return RecordingFiles(
        recorder::readConfiguration(mapOf("recordingFolder", text(folder_.path().c_str()),
                                          "recordingName", text(name_.c_str()), "maxFileMebibytes",
                                          whole(1), std::forward<KeysAndValues>(settings)...),
                                    "p", "c"),
        {"{\"recording\":{\"head\":{\"file\":", "}}}\n"});
  }
  // A message's line of `size` bytes, the next one in order.
  std::string line(std::size_t size) {
    std::string text = "{\"recorded\":{\"number\":" + std::to_string(++number_) + "},\"x\":\"";
    text.append(size - text.size() - 3, 'x');
    return text + "\"}\n";
  }
  std::string lines(std::size_t count, std::size_t size) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) all += line(size);
    return all;
  }
  // Refuses the n-th allocation of `use`. False: there was none.
  template <class Use>
  static bool refuse(std::uint64_t n, const Use& use) {
    failAllocation(n, false);
    try {
      use();
    } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch): the files tell
    }
    failAllocation(0, false);
    return refusedAllocations() > 0;
  }
  std::uint64_t bytesOnDisk() const {
    std::uint64_t total = 0;
    for (const std::string& name : folder_.recordings()) {
      total += std::filesystem::file_size(folder_.path() / name);
    }
    return total;
  }

  RecordingFolder folder_;
  std::string name_ = "n";
  std::uint64_t number_ = 0;
};

TEST_F(RecordingFilesTest, FileAppearsWithItsFirstLine) {
  RecordingFiles files = make();
  files.takeName();
  EXPECT_THAT(folder_.recordings(), IsEmpty());
  EXPECT_TRUE(files.write(line(100)));
  EXPECT_THAT(folder_.recordings(), ElementsAre("n.000001.ndjson"));
  EXPECT_EQ(folder_.lines()[0], R"({"recording":{"head":{"file":1}}})");
  files.finish(1, 0);
  EXPECT_EQ(folder_.counts(), (recorder::counts_t{1, 1, 0, 0}));
  EXPECT_EQ(folder_.lines().back().find("next"), std::string::npos);
}

TEST_F(RecordingFilesTest, OnlyTheOwnerReadsTheFiles) {
  RecordingFiles files = make();
  EXPECT_TRUE(files.write(line(100)));
  EXPECT_EQ(std::filesystem::status(files.path()).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(RecordingFilesTest, FullFileEndsWithCountsSoFar) {
  RecordingFiles files = make();
  EXPECT_TRUE(files.write(lines(300, 5000)));
  files.finish(301, 1);
  EXPECT_THAT(folder_.recordings(), SizeIs(2));
  const std::string foot = linesOf(folder_.path() / "n.000001.ndjson").back();
  const auto in_first =
      startingWith(R"({"recorded":)", linesOf(folder_.path() / "n.000001.ndjson"));
  EXPECT_EQ(numberIn(foot, "seen"), in_first.size());
  EXPECT_EQ(numberIn(foot, "recorded"), in_first.size());
  EXPECT_NE(foot.find(R"("next":true)"), std::string::npos);
  EXPECT_EQ(folder_.counts(), (recorder::counts_t{301, 300, 1, 0}));
}

TEST_F(RecordingFilesTest, FileOfOneMessageHasItsCounts) {
  RecordingFiles files = make();
  EXPECT_TRUE(files.write(line(600'000)));
  EXPECT_TRUE(files.write(line(600'000)));
  const std::string foot = linesOf(folder_.path() / "n.000001.ndjson").back();
  EXPECT_EQ(numberIn(foot, "seen"), 1u);
  EXPECT_EQ(numberIn(foot, "filtered"), 0u);
}

TEST_F(RecordingFilesTest, RingKeepsTheBoundAtEveryWrite) {
  RecordingFiles files = make("maxFiles", whole(3));
  for (int i = 0; i < 100; ++i) {
    EXPECT_TRUE(files.write(lines(7, 10'000)));
    ASSERT_LE(bytesOnDisk(), 3 * MEBIBYTE);
  }
  EXPECT_THAT(folder_.recordings(),
              ElementsAre("n.000005.ndjson", "n.000006.ndjson", "n.000007.ndjson"));
}

TEST_F(RecordingFilesTest, StopKeepsTheOldestFiles) {
  RecordingFiles files = make("maxFiles", whole(2), "whenFull", text("stop"));
  EXPECT_FALSE(files.write(lines(300, 10'000)));
  EXPECT_LE(bytesOnDisk(), 2 * MEBIBYTE);
  EXPECT_THAT(folder_.recordings(), ElementsAre("n.000001.ndjson", "n.000002.ndjson"));
  EXPECT_EQ(files.recorded(), folder_.messages().size());
  EXPECT_EQ(files.recorded() + files.lost(), 300U);
  EXPECT_EQ(folder_.lines().back().find("next"), std::string::npos);
}

TEST_F(RecordingFilesTest, FilesOfEarlierRunsCountIntoTheBound) {
  std::ofstream(folder_.path() / "n.000041.ndjson") << std::string(5 * MEBIBYTE / 2, 'x');
  std::ofstream(folder_.path() / "n.000042.ndjson") << "x";
  std::ofstream(folder_.path() / "n.000042.ndjsonx") << "x";
  std::ofstream(folder_.path() / "m.000099.ndjson") << "x";
  std::ofstream(folder_.path() / "n.0000421.ndjson") << "x";
  std::ofstream(folder_.path() / "n.00x042.ndjson") << "x";
  RecordingFiles files = make("maxFiles", whole(3));
  EXPECT_TRUE(files.write(line(100)));
  EXPECT_THAT(folder_.recordings(),
              ElementsAre("m.000099.ndjson", "n.000042.ndjson", "n.0000421.ndjson",
                          "n.000043.ndjson", "n.00x042.ndjson"));
}

TEST_F(RecordingFilesTest, OtherThingsUnderItsNameAreErrors) {
  const std::string path = folder_.path().string() + "/n.000001.ndjson";
  RecordingFiles files = make("maxFiles", whole(1));
  std::filesystem::create_symlink("nowhere", path);
  EXPECT_EQ(errorOf([&] { return files.write(line(100)); }),
            "cannot tell the size of " + path + ": Too many levels of symbolic links");
  std::filesystem::remove(path);
  std::filesystem::create_directory(path);
  EXPECT_EQ(errorOf([&] { return files.write(line(100)); }),
            "cannot remove " + path + ": Is a directory");
  EXPECT_EQ(files.lost(), 2U);
}

TEST_F(RecordingFilesTest, LossesBeyondTheBoundAreOnlyCounted) {
  std::ofstream(folder_.path() / "n.000001.ndjson") << "x";
  RecordingFiles files = make("maxFiles", whole(1), "whenFull", text("stop"));
  files.takeName();
  files.lose(line(100));
  files.finish(1, 0);
  EXPECT_EQ(files.lost(), 1U);
  EXPECT_THAT(folder_.lines(), ElementsAre("x"));
}

TEST_F(RecordingFilesTest, CompressedFilesKeepTheirNumbers) {
  std::ofstream(folder_.path() / "n.000007.ndjson.gz") << std::string(9 * MEBIBYTE, 'x');
  RecordingFiles files = make("maxFiles", whole(1));
  EXPECT_TRUE(files.write(line(100)));
  EXPECT_THAT(folder_.recordings(), ElementsAre("n.000008.ndjson"));
}

TEST_F(RecordingFilesTest, OnlyItsUncompressedFilesCountIntoTheBound) {
  for (const char* name : {"n.000001.ndjson.gz", "n.000002.ndjson", "n.000003.ndjson.gz",
                           "n.000004.ndjson.gz", "n.000005.ndjson.gz", "n.00x042.ndjson"}) {
    const std::ofstream empty(folder_.path() / name);
  }
  {
    RecordingFiles files = make("maxFiles", whole(2), "whenFull", text("stop"));
    EXPECT_TRUE(files.write(line(100)));
    EXPECT_EQ(files.path(), folder_.path().string() + "/n.000006.ndjson");
  }
  RecordingFiles full = make("maxFiles", whole(2), "whenFull", text("stop"));
  EXPECT_FALSE(full.write(line(100)));
}

TEST_F(RecordingFilesTest, FileIsFullToTheByte) {
  for (const std::size_t excess : {1U, 0U}) {
    name_ = std::to_string(excess);
    RecordingFiles files = make();
    EXPECT_TRUE(files.write(line(1000)));
    const std::size_t room = MEBIBYTE - recorder::FOOT_SIZE - recorder::GAP_SIZE -
                             std::filesystem::file_size(files.path());
    EXPECT_TRUE(files.write(lines(room / 1000 - 1, 1000)));
    EXPECT_TRUE(files.write(line(1000 + room % 1000 + excess)));
    EXPECT_THAT(files.path(), HasSubstr(excess == 0 ? ".000001." : ".000002."));
    files.lose(line(100));
    EXPECT_TRUE(files.write(line(100))); // after the line of the gap, so in the next file
    EXPECT_THAT(files.path(), HasSubstr(".000002."));
  }
}

TEST_F(RecordingFilesTest, GapThatFailsComesLater) {
  RecordingFiles files = make();
  EXPECT_TRUE(files.write(line(100)));
  files.lose(line(100));
  {
    const FileSizeLimit limit(std::filesystem::file_size(files.path()) + 10);
    EXPECT_THROW(static_cast<void>(files.write(line(100))), DiskError);
  }
  EXPECT_TRUE(files.write(line(100)));
  EXPECT_THAT(
      folder_.gaps(),
      ElementsAre(R"({"recording":{"gap":{"first":2,"last":3,"lost":2,"reason":"disk"}}})"));
}

TEST_F(RecordingFilesTest, StopsAtTheHighestNumber) {
  std::ofstream(folder_.path() / "n.999999.ndjson") << "x";
  RecordingFiles files = make();
  EXPECT_FALSE(files.write(line(100)));
  EXPECT_EQ(files.lost(), 1U);
}

TEST_F(RecordingFilesTest, RecordersNeverShareAName) {
  RecordingFiles first = make();
  RecordingFiles second = make();
  RecordingFiles third = make();
  first.takeName();
  second.takeName();
  third.takeName();
  EXPECT_TRUE(third.write(line(100)));
  EXPECT_TRUE(first.write(line(100)));
  EXPECT_TRUE(second.write(line(100)));
  EXPECT_THAT(folder_.recordings(),
              ElementsAre("n-2.000001.ndjson", "n-3.000001.ndjson", "n.000001.ndjson"));
}

TEST_F(RecordingFilesTest, NinetyNineRecordersMayWantOneName) {
  std::vector<RecordingFiles> files;
  files.reserve(99);
  for (int i = 0; i < 99; ++i) {
    files.push_back(make());
    files.back().takeName();
  }
  EXPECT_TRUE(files.back().write(line(100)));
  EXPECT_THAT(folder_.recordings(), ElementsAre("n-99.000001.ndjson"));
  RecordingFiles another = make();
  try {
    another.takeName();
    FAIL();
  } catch (const recorder::DiskError& e) {
    EXPECT_EQ(e.what(), "cannot find a free name like " + folder_.path().string() +
                            "/n: Device or resource busy");
  }
}

TEST_F(RecordingFilesTest, LongestLineIsHalfAFile) {
  const auto configuration = recorder::readConfiguration(
      mapOf("recordingFolder", text("f"), "maxFileMebibytes", whole(2)), "p", "c");
  EXPECT_EQ(RecordingFiles::longestLine(configuration), std::size_t{1} << 20U);
}

TEST_F(RecordingFilesTest, NameIsFreeAfterItsRecorder) {
  { make().takeName(); }
  RecordingFiles files = make();
  EXPECT_TRUE(files.write(line(100)));
  EXPECT_THAT(folder_.recordings(), ElementsAre("n.000001.ndjson"));
}

TEST_F(RecordingFilesTest, RemovedFileIsFollowedByANewOne) {
  RecordingFiles files = make();
  EXPECT_TRUE(files.write(line(100)));
  std::filesystem::remove(files.path());
  EXPECT_TRUE(files.write(line(100)));
  EXPECT_THAT(folder_.recordings(), ElementsAre("n.000002.ndjson"));
  EXPECT_THAT(folder_.messages(), SizeIs(1));
}

TEST_F(RecordingFilesTest, FullDiskLeavesWholeLinesAndAGap) {
  RecordingFiles files = make();
  std::string error;
  {
    const FileSizeLimit limit(1000);
    error = errorOf([&] { static_cast<void>(files.write(lines(5, 300))); });
  }
  EXPECT_EQ(error, "cannot write to " + files.path() + ": File too large");
  EXPECT_EQ(files.recorded(), 3U);
  EXPECT_EQ(files.lost(), 2U);
  EXPECT_TRUE(files.write(line(100)));
  files.finish(6, 0);
  const texts_t lines = folder_.lines();
  ASSERT_THAT(lines, SizeIs(7));
  EXPECT_EQ(lines[4], R"({"recording":{"gap":{"first":4,"last":5,"lost":2,"reason":"disk"}}})");
  EXPECT_EQ(folder_.counts(), (recorder::counts_t{6, 4, 0, 2}));
}

TEST_F(RecordingFilesTest, WithoutMemoryLinesAreLostAndCounted) {
  bool refused = true;
  for (std::uint64_t n = 1; refused; ++n) {
    RecordingFiles files = make();
    const std::string text = lines(300, 5000); // two files
    refused = refuse(n, [&] { EXPECT_TRUE(files.write(text)); });
    EXPECT_EQ(files.recorded() + files.lost(), 300U) << "allocation " << n;
    EXPECT_TRUE(files.write(line(100)));
    EXPECT_EQ(files.recorded() + files.lost(), 301U) << "allocation " << n;
  }
}

TEST_F(RecordingFilesTest, WithoutMemoryEachFileHasItsHead) {
  bool refused = true;
  for (std::uint64_t n = 1; refused && !HasFailure(); ++n) {
    RecordingFiles files = make();
    const std::string text = line(100);
    refused = refuse(n, [&] { EXPECT_TRUE(files.write(text)); });
    files.finish(1, 0);
    EXPECT_THAT(startingWith(R"({"recording":{"head":)", folder_.lines()),
                SizeIs(folder_.recordings().size()))
        << "allocation " << n;
  }
}

TEST_F(RecordingFilesTest, WithoutMemoryNoSecondNameIsTaken) {
  name_ = "a-name-that-takes-an-allocation";
  bool refused = true;
  for (std::uint64_t n = 1; refused && !HasFailure(); ++n) {
    RecordingFiles files = make();
    refused = refuse(n, [&] { files.takeName(); });
    EXPECT_TRUE(files.write(line(100)));
    EXPECT_THAT(folder_.recordings(), Each(StartsWith(name_ + "."))) << "allocation " << n;
  }
}

TEST_F(RecordingFilesTest, NoFileIsLeftWithoutItsHead) {
  RecordingFiles files = make();
  {
    const FileSizeLimit limit(10);
    EXPECT_THROW(static_cast<void>(files.write(line(100))), DiskError);
  }
  EXPECT_THAT(folder_.recordings(), IsEmpty());
  EXPECT_EQ(files.lost(), 1U);
}

TEST_F(RecordingFilesTest, LostGapsAreCountedInTheNextOne) {
  RecordingFiles files = make();
  {
    const FileSizeLimit limit(10);
    EXPECT_THROW(static_cast<void>(files.write("{\"recording\":{\"gap\":{\"first\":1,\"last\":9,"
                                               "\"lost\":8,\"reason\":\"buffer\"}}}\n")),
                 DiskError);
  }
  number_ = 9;
  EXPECT_TRUE(files.write(line(100)));
  EXPECT_THAT(
      folder_.gaps(),
      ElementsAre(R"({"recording":{"gap":{"first":1,"last":9,"lost":8,"reason":"disk"}}})"));
}

TEST_F(RecordingFilesTest, FailuresAtTheEndOfAFileStayInTheBound) {
  RecordingFiles files = make("maxFiles", whole(2));
  EXPECT_TRUE(files.write(lines(104, 10'000)));
  for (int i = 0; i < 20; ++i) {
    {
      const FileSizeLimit limit(1000);
      EXPECT_THROW(static_cast<void>(files.write(lines(2, 9'000))), DiskError);
    }
    EXPECT_TRUE(files.write(line(100)));
    ASSERT_LE(bytesOnDisk(), 2 * MEBIBYTE);
  }
  for (const std::string& name : folder_.recordings()) {
    EXPECT_LE(std::filesystem::file_size(folder_.path() / name), MEBIBYTE);
  }
  EXPECT_EQ(files.recorded() + files.lost(), number_);
}

TEST_F(RecordingFilesTest, VanishedFolderIsUsedAgainWhenItReturns) {
  RecordingFiles files = make();
  EXPECT_TRUE(files.write(line(100)));
  std::filesystem::remove_all(folder_.path());
  EXPECT_EQ(errorOf([&] { static_cast<void>(files.write(line(100))); }),
            "cannot read " + folder_.path().string() + ": No such file or directory");
  std::filesystem::create_directory(folder_.path());
  EXPECT_TRUE(files.write(line(100)));
  EXPECT_THAT(folder_.recordings(), ElementsAre("n.000002.ndjson"));
  EXPECT_THAT(folder_.gaps(), SizeIs(1));
}

TEST_F(RecordingFilesTest, FolderMayComeLater) {
  std::filesystem::remove(folder_.path());
  RecordingFiles files = make();
  EXPECT_EQ(errorOf([&] { files.takeName(); }),
            "cannot make " + folder_.path().string() + "/n.lock: No such file or directory");
  std::filesystem::create_directory(folder_.path());
  EXPECT_TRUE(files.write(line(100)));
}

} // namespace
} // namespace com::velanto::connectivity::test
