// Keeps the section "The notation" of docs/recording.md true: the reader takes each example, and the
// writer writes it again.
#include <gtest/gtest.h>

#include "ndjson/json_reader.hpp"
#include "tests/docs/markdown.hpp"
#include "tests/ndjson/recorded_law.hpp"

namespace com::velanto::connectivity::test {

TEST(RecordingNotation, ExamplesReadAndWriteTheSame) {
  JsonReader reader;
  const auto rows = readTable(readDocument("docs/recording.md"), "Value");
  EXPECT_EQ(rows.size(), 12U);
  for (const auto& row : rows) {
    const std::string line = REMARK + (R"("metadata":{},"payload":)" + row[1]) + "}";
    const Message message = reader.parseMessage(line);
    const std::string written = recordedLine(message);
    // A custom object reads back as empty.
    EXPECT_EQ(written, message.getPayload().empty()
                           ? REMARK + std::string(R"("metadata":{},"payload":null})")
                           : line);
  }
}

} // namespace com::velanto::connectivity::test
