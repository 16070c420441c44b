// User status, handed to a sink or shown on standard error.
#include "host/status.h"

#include <string>
#include <vector>

#include "tests/standin/stderr_packets.hpp"
#include "tests/standin/values.hpp"

namespace standin::test {
namespace {

struct report_t {
  void* handle = nullptr;
  const table_t* shown = nullptr;
  int count = 0;
};

void keepReport(void* context, void* handle, const table_t* shown) {
  auto& report = *static_cast<report_t*>(context);
  report = {handle, shown, report.count + 1};
}

class Status : public Blocks {
 protected:
  void TearDown() override {
    standin_set_status_sink(nullptr, nullptr);
    Blocks::TearDown();
  }
};

TEST_F(Status, SinkReceivesHandleAndTable) {
  report_t report;
  standin_set_status_sink(keepReport, &report);
  const Held shown(map(tableOf(1, {{0, 5, borrowed("state"), borrowed("up")}})));
  vlt_set_user_status_map(&report, shown.value.value.map);
  EXPECT_EQ(report.count, 1);
  EXPECT_EQ(report.handle, &report);
  EXPECT_EQ(report.shown, shown.value.value.map);
}

TEST_F(Status, DefaultSinkWritesOneLineInOneWrite) {
  const Held shown(map(tableOf(
      2, {{0, 5, borrowed("state"), borrowed("up")}, {1, 7, borrowed("sent"), integer(3)}})));
  StderrPackets written;
  vlt_set_user_status_map(nullptr, shown.value.value.map);
  EXPECT_EQ(written.take(), std::vector<std::string>{"status: {\"state\": \"up\", \"sent\": 3}\n"});
}

TEST_F(Status, NoTableHasNoEntries) {
  StderrPackets written;
  vlt_set_user_status_map(nullptr, nullptr);
  EXPECT_EQ(written.take(), std::vector<std::string>{"status: {}\n"});
}

TEST_F(Status, TableStaysTheCallers) {
  const Held shown(map(tableOf(1, {{0, 5, string("state"), string("up")}})));
  StderrPackets written;
  vlt_set_user_status_map(nullptr, shown.value.value.map);
  EXPECT_EQ(rendered(shown.value), R"({"state": "up"})");
}

// The fixture counts the remaining blocks.
TEST_F(Status, LineThatCannotBeRenderedIsLost) {
  const int allocations = failEach([] {
    StderrPackets written;
    vlt_set_user_status_map(nullptr, nullptr);
    EXPECT_EQ(written.take().empty(), standin_failed_allocations() > 0);
  });
  EXPECT_EQ(allocations, 2);
}

} // namespace
} // namespace standin::test
