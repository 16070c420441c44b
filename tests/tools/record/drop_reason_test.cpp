#include "tools/record/drop_reason.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace com::velanto::connectivity::test {

namespace {

using tools::drop_reason_t;

struct reason_row_t {
  const char* what;
  const char* code;
  const char* key;
};

const std::string BEGIN = "<connectivity.p.c> Error when transforming message towards host";

} // namespace

TEST(DropReason, LogTextsHaveStableCodes) {
  const std::vector<reason_row_t> rows = {
      {"Required key 'text' missing from message payload", "missing-key", "text"},
      {"Required key 'id' missing from source", "missing-key", "source.id"},
      {"Value for key 'type' is not a string.", "wrong-type", "type"},
      {"Problem with key 'source': Incorrect type in get (you asked for map but it's actually "
       "list)",
       "wrong-type", "source"},
      {"Problem with key 'time': Get from empty", "wrong-type", "time"},
      {"Incorrect type in get (you asked for map but it's actually string)", "wrong-type", ""},
      {"Get from empty", "wrong-type", ""},
      {"Error parsing timestamp 'yesterday' in key 'time'", "bad-timestamp", "time"},
      {"Error parsing timestamp 'a' in key 'b' in key 'time'", "bad-timestamp", "time"},
      {"Unrecognized alarm severity: critical", "bad-severity", "severity"},
      {"Unrecognized alarm status: OPEN", "bad-status", "status"},
      {"Unrecognized operation status: DONE", "bad-status", "status"},
      {"Unrecognised Pulsar message type: 'inventory'", "unknown-kind", "pulsarPath"},
      {"Unrecognised Pulsar message type: ''", "no-path-segment", "pulsarPath"},
      {"std::bad_alloc", "out-of-memory", ""},
      {"boom", "other", ""},
      {"", "other", ""}};
  for (const reason_row_t& row : rows) {
    const std::string text = BEGIN + ": " + row.what;
    const std::vector<tools::log_line_t> log = {{3, text}};
    const drop_reason_t reason = tools::dropReasonOf(log);
    EXPECT_STREQ(reason.code, row.code) << row.what;
    EXPECT_EQ(reason.key, row.key) << row.what;
    EXPECT_EQ(reason.text, text);
  }
}

TEST(DropReason, IdIsNoPartOfTheReason) {
  const std::vector<tools::log_line_t> log = {
      {3, BEGIN + " ('id' = 'a: b'): Required key 'time' missing from message payload"}};
  EXPECT_STREQ(tools::dropReasonOf(log).code, "missing-key");
  EXPECT_EQ(tools::dropReasonOf(log).key, "time");
}

TEST(DropReason, TraceIsNoReason) {
  const std::vector<tools::log_line_t> log = {{6, "<c> Processing message: Get from empty"},
                                              {3, BEGIN + ": std::bad_alloc"}};
  EXPECT_STREQ(tools::dropReasonOf(log).code, "out-of-memory");
}

TEST(DropReason, NothingLoggedIsUnreported) {
  EXPECT_STREQ(tools::dropReasonOf({}).code, "unreported");
  EXPECT_EQ(tools::dropReasonOf({}).text, "");
}

TEST(DropReason, FailingBatchHasAReasonOfItsOwn) {
  const std::vector<tools::log_line_t> log = {{3, "<c> Exception from sendBatchTowardsHost: boom"}};
  EXPECT_STREQ(tools::dropReasonOf(log).code, "batch-failed");
}

} // namespace com::velanto::connectivity::test
