// Keeps samples/ true: (1) samples/README.md lists every file, with the counts that a replay gives;
// (2) samples/failing.md has the log line of every line of failing.ndjson.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "ndjson/json_reader.hpp"
#include "tests/docs/markdown.hpp"
#include "tests/docs/replay_codec.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/stderr_capture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

class Samples : public HostFixture {
 protected:
  // The messages of the sample file `name` that reach the host, in a chain with the replay tool's
  // defaults.
  std::vector<Message> replay(const std::string& name) {
    JsonReader reader;
    std::vector<Message> batch;
    for (const std::string& line : readDocument("samples/" + name).lines) {
      batch.push_back(reader.parseMessage(line));
    }
    sent_ = batch.size();
    ReplayCodec codec(reader.parseValue(R"({"tenantId": ""})"));
    return codec.hostGets(std::move(batch));
  }

  std::size_t sent_ = 0; // by the last replay
};

std::vector<std::string> textsOf(const std::vector<log_line_t>& log) {
  std::vector<std::string> texts;
  texts.reserve(log.size());
  for (const log_line_t& line : log) texts.push_back(line.text);
  return texts;
}

std::ptrdiff_t linesWith(const std::vector<std::string>& lines, const char* part) {
  return std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
    return line.find(part) != std::string::npos;
  });
}

} // namespace

TEST_F(Samples, TableListsEveryFile) {
  std::set<std::string> listed;
  for (const auto& row : readTable(readDocument("samples/README.md"), "File")) {
    listed.insert(row[0]);
  }
  std::set<std::string> present;
  for (const auto& file : std::filesystem::directory_iterator(VLT_PROJECT_ROOT "/samples")) {
    if (file.path().extension() == ".ndjson") present.insert(file.path().filename());
  }
  EXPECT_EQ(listed, present);
}

TEST_F(Samples, CountsAgreeWithTheTable) {
  for (const auto& row : readTable(readDocument("samples/README.md"), "File")) {
    SCOPED_TRACE(row[0]);
    const std::vector<Message> reached = replay(row[0]);
    EXPECT_EQ(std::to_string(sent_), row[1]);
    EXPECT_EQ(std::to_string(reached.size()), row[2]);
    EXPECT_EQ(std::to_string(sent_ - reached.size()), row[3]);
    EXPECT_EQ(std::to_string(takeLog().size()), row[3]) << "one log line for each dropped message";
  }
}

TEST_F(Samples, FailingLinesAreLoggedAsDescribed) {
  std::vector<Message> reached;
  const std::string direct = stderrOf([&] { reached = replay("failing.ndjson"); });
  const std::vector<std::string> described = readNumberedSpans(readDocument("samples/failing.md"));
  EXPECT_EQ(textsOf(takeLog()), described);
  EXPECT_EQ(reached.size(), 0u);
  EXPECT_EQ(linesWith(documentOf(direct).lines, "GetVisitor<"),
            linesWith(described, "Incorrect type in get"));
}

TEST_F(Samples, MessageWithoutAPathPassesUnchanged) {
  std::vector<Message> reached = replay("site-day.ndjson");
  const auto is_heartbeat = [](const Message& m) { return has(m.getMetadataMap(), "chain"); };
  const auto found = std::find_if(reached.begin(), reached.end(), is_heartbeat);
  ASSERT_NE(found, reached.end());
  EXPECT_EQ(found->getMetadataMap(), mapOf("chain", text("quay-north")));
  EXPECT_EQ(found->getPayload(), data_t(mapOf("heartbeat", whole(200), "connected", truth(true))));
}

} // namespace com::velanto::connectivity::test
