// Recordings as the built tool reads them: folders, counts, gaps, cut files, directions.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/tools/program.hpp"
#include "tests/tools/recorded_lines.hpp"

namespace com::velanto::connectivity::test {

namespace {

const std::string RECORDER = "\n  recorder before in chain site\n";

class RecordingsTest : public Program {
 protected:
  RecordingsTest() { std::filesystem::create_directory(folder_.path("rec")); }

  void write(unsigned file, const std::string& content) const {
    folder_.write("rec/before.00000" + std::to_string(file) + ".ndjson",
                  headLine({"before", file}) + content);
  }
};

std::string payloadLine(unsigned payload) {
  return "{\"metadata\":{},\"payload\":" + std::to_string(payload) + "}\n";
}

std::string figures(unsigned read) {
  return "read " + std::to_string(read) + ", reached the host " + std::to_string(read) +
         ", dropped 0, malformed 0, T ms\n";
}

} // namespace

TEST_F(RecordingsTest, FolderIsReadInTheOrderOfItsFiles) {
  write(3, recordedLine({1, 1}, payloadLine(1)) + footLine(1, 1, 0, 0, true));
  write(4, recordedLine({2, 2}, payloadLine(2)) + gapLine(3, 5, 3) +
               recordedLine({8, 8}, payloadLine(3)) + footLine(8, 3, 2, 3));
  for (const char* path : {"rec", "rec/", "rec/before"}) {
    const result_t result = run({path});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, payloadLine(1) + payloadLine(2) + payloadLine(3));
    EXPECT_EQ(result.diagnostics, "before: 3 messages, files 3-4, run 00000000000000a1" + RECORDER +
                                      "  seen 8, recorded 3, filtered 2, lost 3; 1 gap of 3\n" +
                                      figures(3));
  }
}

TEST_F(RecordingsTest, CutFileReadsUpToItsLastLine) {
  const std::string lines = recordedLine({1, 1}, payloadLine(1));
  const std::string next = recordedLine({2, 2}, payloadLine(2));
  for (const std::size_t size : {std::size_t{1}, next.size() - 1}) {
    write(1, lines + next.substr(0, size));
    const result_t result = run({"rec"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, payloadLine(1));
    EXPECT_EQ(result.diagnostics, "before: 1 messages, files 1, run 00000000000000a1" + RECORDER +
                                      "  no counts yet; no end\n  " + std::to_string(size) +
                                      " bytes left over after the last line\n" + figures(1));
  }
}

TEST_F(RecordingsTest, CutHeadIsNoMalformedLine) {
  folder_.write("rec/before.000001.ndjson", headLine({"before"}).substr(0, 5));
  folder_.write("single", headLine({"before"}).substr(0, 50));
  const result_t result = run({"rec", "single"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.diagnostics, "55 bytes of files without a whole line\n" + figures(0));
}

TEST_F(RecordingsTest, CountsThatContradictEachOtherAreNamed) {
  write(1, recordedLine({1, 1}, payloadLine(1)) + footLine(9, 1, 2, 3));
  const result_t result = run({"rec", "--quiet"});
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: rec/before.000001.ndjson:3: seen 9 is not recorded 1 + filtered 2 + "
            "lost 3\n");
}

TEST_F(RecordingsTest, NewerFormatIsRefused) {
  folder_.write("newer", "{\"recording\":{\"head\":{\"format\":2}}}\n");
  const result_t result = run({"newer"});
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: newer:1: a recording of format 2, this program knows format 1\n");
}

TEST_F(RecordingsTest, DamagedRemarkIsAMalformedLine) {
  input_ = headLine({"before"}) + "{\"recording\":{]}\n{\"recording\":5}\n";
  const result_t result = run({});
  EXPECT_EQ(result.status, 3);
  EXPECT_NE(result.diagnostics.find("read 2, reached the host 0, dropped 0, malformed 2,"),
            std::string::npos)
      << result.diagnostics;
}

TEST_F(RecordingsTest, RecordingOnStandardInputIsReadAlike) {
  input_ = headLine({"before"}) + recordedLine({1, 1}, payloadLine(1)) + "{\"recorded\":";
  const result_t result = run({"--threads", "2"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.diagnostics, "<stdin>: 1 messages, files 1, run 00000000000000a1" + RECORDER +
                                    "  no counts yet; no end\n"
                                    "  12 bytes left over after the last line\n" +
                                    figures(1));
}

TEST_F(RecordingsTest, CompressedFilesAreRead) {
  write(1, recordedLine({1, 1}, payloadLine(1)) + footLine(1, 1, 0, 0, true));
  write(2, recordedLine({2, 2}, payloadLine(2)) + footLine(2, 2, 0, 0));
  EXPECT_EQ(runShell("gzip rec/before.000001.ndjson").status, 0);
  EXPECT_EQ(run({"rec"}).out, payloadLine(1) + payloadLine(2));
}

TEST_F(RecordingsTest, RunsOfOneNameAreToldApart) {
  write(1, recordedLine({1, 1}, payloadLine(1)) + footLine(1, 1, 0, 0));
  folder_.write("rec/before.000002.ndjson",
                headLine({"before", 2, "00000000000000a2", 5, R"("payload.text","a.b")"}) +
                    recordedLine({7, 1}, payloadLine(2)) + footLine(7, 1, 6, 0));
  EXPECT_EQ(run({"rec"}).diagnostics, "before: 1 messages, files 1, run 00000000000000a1" +
                                          RECORDER +
                                          "  seen 1, recorded 1, filtered 0, lost 0\n"
                                          "before: 1 messages, files 2, run 00000000000000a2" +
                                          RECORDER +
                                          "  seen 7, recorded 1, filtered 6, lost 0\n"
                                          "  a sample: one in 5 batches\n"
                                          "  omitted: payload.text, a.b\n" +
                                          figures(2));
}

TEST_F(RecordingsTest, ProgramsGetTheSameAsJson) {
  write(2, recordedLine({1, 1, 0, 1, "transport"}, payloadLine(1)) + gapLine(2, 2, 1) +
               footLine(2, 1, 0, 1) + "{");
  const result_t result = run({"rec", "--summary=json"});
  EXPECT_NE(result.diagnostics.find(
                R"("recordings":[{"name":"before","plugin":"before","chain":"site",)"
                R"("run":"00000000000000a1","files":[2],"messages":1,"other_direction":1,"gaps":1,)"
                R"("lost_in_gaps":1,"counts":{"seen":2,"recorded":1,"filtered":0,"lost":1},)"
                R"("ended":true,"bytes_left_over":1,"one_in":1,"omitted":[]}],)"
                R"("files_read":[{"name":"before","first":2,"last":2}],"deleted_files":[],)"
                R"("headless_bytes":0})"),
            std::string::npos)
      << result.diagnostics;
}

TEST_F(RecordingsTest, OtherDirectionIsLeftOutAndCounted) {
  write(1, recordedLine({1, 1}, payloadLine(1)) +
               recordedLine({2, 2, 0, 1, "transport"}, payloadLine(2)));
  EXPECT_EQ(run({"rec", "--direction", "transport"}).out, payloadLine(2));
  const result_t result = run({"rec"});
  EXPECT_EQ(result.out, payloadLine(1));
  EXPECT_NE(result.diagnostics.find("  not sent: 1 messages of the other direction\n" + figures(1)),
            std::string::npos);
}

TEST_F(RecordingsTest, AsRecordedKeepsBatchesAndDirections) {
  std::string lines;
  unsigned number = 0;
  for (unsigned batch = 1; batch <= 300; ++batch) {
    const std::string direction = batch % 3 == 0 ? "transport" : "host";
    for (unsigned place = 0; place < 4; ++place) {
      ++number;
      if (batch == 7 && place == 3) continue; // lost
      lines +=
          recordedLine({number, batch, place, 4, direction}, eventLine(std::to_string(number)));
    }
  }
  write(1, lines);
  const result_t one = run({"rec", "--as-recorded"});
  EXPECT_EQ(one.status, 0);
  EXPECT_NE(one.diagnostics.find("\nread 1199, reached the host 799, the transport 400, dropped 0"),
            std::string::npos)
      << one.diagnostics;
  EXPECT_NE(run({"rec", "--as-recorded", "--summary=json"})
                .diagnostics.find(R"("batches":{"count":300,)"),
            std::string::npos);
  const result_t many = run({"rec", "--as-recorded", "--threads", "3"});
  EXPECT_TRUE(many.out == one.out);
  EXPECT_EQ(many.diagnostics, one.diagnostics);
  EXPECT_EQ(run({"rec", "--as-recorded", "--against", VLT_PLUGIN_PATH}).status, 0);
}

TEST_F(RecordingsTest, FileOfARecordingIsNotOverwritten) {
  write(1, recordedLine({1, 1}, payloadLine(1)));
  const result_t result = run({"rec", "--dropped", "rec/before.000001.ndjson"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: rec/before.000001.ndjson is read and cannot be written, too\n");
}

TEST_F(RecordingsTest, OptionsThatExcludeEachOtherAreNamed) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> rows = {
      {{"--follow", "--repeat", "2", "in"}, "--follow takes no --repeat or --threads"},
      {{"--follow", "--threads", "2", "in"}, "--follow takes no --repeat or --threads"},
      {{"--expect-events", "rec", "--repeat", "2", "in"},
       "--expect-events and --redact take no --repeat"},
      {{"--as-recorded", "--batch-size", "2", "in"},
       "--as-recorded takes no --batch-size, --direction or --explain"}};
  for (const auto& [arguments, complaint] : rows) {
    const result_t result = run(arguments);
    EXPECT_EQ(result.status, 2) << complaint;
    EXPECT_EQ(result.diagnostics, "ostrovia-replay: " + complaint + "\n");
  }
}

} // namespace com::velanto::connectivity::test
