#include "ndjson/recorded.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

using Direction = recorded_t::Direction;

class RecordedTest : public HostFixture {
 protected:
  std::string messageError(const std::string& line) {
    try {
      static_cast<void>(reader_.parseMessage(line));
    } catch (const MalformedJson& e) {
      return std::to_string(e.column()) + ": " + e.what();
    }
    return "nothing thrown";
  }

  JsonReader reader_;
};

} // namespace

TEST_F(RecordedTest, RemarkIsRead) {
  EXPECT_EQ(recordedIn(R"({"recorded":{"time":1715659331482000000,"number":18,"batch":7,"place":0,)"
                       R"("of":2,"direction":"host"},"metadata":{}})"),
            (recorded_t{1715659331482000000, 18, 7, 0, 2, Direction::HOST}));
  EXPECT_EQ(recordedIn(R"( { "recorded" : { "time" : 0 , "number" : 18446744073709551615 ,)"
                       "\t\"batch\": 1, \"place\": 2, \"of\": 3, \"direction\": \"transport\" } }"),
            (recorded_t{0, 18446744073709551615U, 1, 2, 3, Direction::TRANSPORT}));
}

TEST_F(RecordedTest, LinesOfOthersHaveNoRemark) {
  const char* const remark_comes_last = R"({"payload":1,"recorded":{"time":1,"number":1,"batch":1,)"
                                        R"("place":0,"of":1,"direction":"host"}})";
  for (const char* const line : {"", "{}", "[]", R"({"payload":{}})", remark_comes_last}) {
    EXPECT_EQ(recordedIn(line), std::nullopt) << line;
  }
}

TEST_F(RecordedTest, DamagedRemarkIsRefused) {
  for (const char* const remark :
       {"1", "{}", R"({"time":1})",
        R"({"time":-1,"number":1,"batch":1,"place":0,"of":1,"direction":"host"})",
        R"({"time":01,"number":1,"batch":1,"place":0,"of":1,"direction":"host"})",
        R"({"time":9223372036854775808,"number":1,"batch":1,"place":0,"of":1,"direction":"host"})",
        R"({"time":1.5,"number":1,"batch":1,"place":0,"of":1,"direction":"host"})",
        R"({"time":1,"number":1,"batch":1,"place":0,"of":1,"direction":"up"})",
        R"({"time":1,"number":1,"batch":1,"place":0,"of":1,"direction":"host","more":1})"}) {
    const std::string line = std::string(R"({"recorded":)") + remark + R"(,"payload":1})";
    EXPECT_EQ(recordedIn(line), std::nullopt) << line;
    EXPECT_EQ(messageError(line), R"(2: malformed member "recorded")") << line;
  }
}

TEST_F(RecordedTest, RemarkElsewhereIsRefused) {
  EXPECT_EQ(messageError(R"({"payload":1,"recorded":{}})"),
            R"(14: "recorded" is not the first member)");
}

TEST_F(RecordedTest, RecordersOwnLineIsNoMessage) {
  EXPECT_EQ(messageError(R"({"recording":{"gap":{}}})"), "2: a recorder's own line, no message");
}

TEST_F(RecordedTest, RemarkOfAToolIsAllowedToo) {
  const std::string line =
      R"({"recorded":{"time":1,"number":1,"batch":1,"place":0,"of":1,"direction":"host"},)"
      R"("payload":5,"dropped":"x"})";
  EXPECT_EQ(reader_.parseMessage(line).getPayload(), whole(5));
  EXPECT_EQ(line.substr(reader_.remark().begin, reader_.remark().size), R"(,"dropped":"x")");
}

} // namespace com::velanto::connectivity::test
