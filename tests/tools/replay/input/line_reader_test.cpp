#include "tools/replay/input/line_reader.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/host_fixture.hpp"
#include "tests/tools/recorded_lines.hpp"
#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {

namespace {

using tools::LineReader;
using tools::record_t;

class LineReaderTest : public HostFixture {
 protected:
  std::string write(unsigned file, const std::string& content) const {
    return folder_.write("a.00000" + std::to_string(file) + ".ndjson",
                         headLine({"a", file}) + content);
  }

  const TemporaryFolder folder_;
};

} // namespace

TEST_F(LineReaderTest, RemarksComeWithTheNextMessage) {
  const std::string message = recordedLine({}, "{\"payload\":1}\n");
  const std::string foot = footLine(1, 1, 0, 0);
  write(1, message + foot);
  LineReader reader(tools::inputsFrom({folder_.path("")}), {});
  record_t record;
  ASSERT_TRUE(reader.next(record));
  EXPECT_EQ(record.line + "\n", message);
  EXPECT_EQ(record.place(), folder_.path("") + "a.000001.ndjson:2");
  EXPECT_EQ(record.remarks, headLine({"a", 1}));
  EXPECT_EQ(*record.run, "00000000000000a1");
  ASSERT_TRUE(record.recorded);
  EXPECT_EQ(record.recorded->number, 1u);
  EXPECT_FALSE(reader.next(record));
  EXPECT_EQ(reader.lastRemarks(), foot);
}

TEST_F(LineReaderTest, DeletedFileOfARecordingIsSkipped) {
  const std::string first = write(1, recordedLine({1}, "{\"payload\":1}\n"));
  write(2, recordedLine({2}, "{\"payload\":2}\n"));
  LineReader reader(tools::inputsFrom({folder_.path("")}), {});
  std::filesystem::remove(first);
  record_t record;
  ASSERT_TRUE(reader.next(record));
  EXPECT_EQ(record.recorded->number, 2u);
  EXPECT_FALSE(reader.next(record));
  ASSERT_EQ(reader.recordings().deleted().size(), 1u);
  EXPECT_EQ(reader.recordings().deleted()[0].first, 1u);
}

TEST_F(LineReaderTest, FileCompressedMeanwhileIsReadAllTheSame) {
  const std::string file = write(1, recordedLine({1}, "{\"payload\":1}\n"));
  LineReader reader(tools::inputsFrom({file}), {});
  std::filesystem::rename(file, file + ".gz"); // its first bytes tell that it is not
  record_t record;
  EXPECT_TRUE(reader.next(record));
  EXPECT_TRUE(reader.recordings().deleted().empty());
}

TEST_F(LineReaderTest, FileReadTwiceCountsOnce) {
  const std::string file = write(1, recordedLine({1}, "{\"payload\":1}\n"));
  tools::reading_t reading;
  reading.times = 3;
  LineReader reader(tools::inputsFrom({file}), reading);
  record_t record;
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(reader.next(record));
  EXPECT_FALSE(reader.next(record));
  ASSERT_EQ(reader.recordings().all().size(), 1u);
  EXPECT_EQ(reader.recordings().all()[0].messages, 1u);
}

} // namespace com::velanto::connectivity::test
