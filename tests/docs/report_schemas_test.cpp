// Keeps docs/check-report.schema.json and docs/replay-summary.schema.json true: (1) each accepts
// the JSON of its tool, (2) and refuses it without a member, with another one, and with a member of
// another kind. So the tool writes no member that the schema does not describe.
#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "ndjson/json_writer.hpp"
#include "tests/docs/json_schema.hpp"
#include "tests/support/values.hpp"
#include "tests/tools/program.hpp"

namespace com::velanto::connectivity::test {

namespace {

using ::testing::HasSubstr;

std::vector<std::string> keysOf(const data_t& object) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : object.get<map_t>()) keys.emplace_back(key.get<const char*>());
  return keys;
}

void setMember(data_t& object, const std::string& key, data_t&& value) {
  object.get<map_t>()[text(key.c_str())] = std::move(value);
}

void removeMember(data_t& object, const std::string& key) {
  auto& members = object.get<map_t>();
  members.erase(members.find(text(key.c_str())));
}

class ReportSchemasTest : public Program {
 protected:
  std::string complaint(const data_t& document) const {
    return schema_->complaint(toJson(document));
  }

  // Spoils each member of `object`, a part of `document`, in turn. The tool does not always write
  // the member `optional`.
  void expectEveryMemberCounts(const data_t& document, data_t& object,
                               const std::string& optional = "") {
    for (const std::string& key : keysOf(object)) {
      const data_t kept = at(object.get<map_t>(), key.c_str());
      setMember(object, key, data_t(mapOf("of another", listOf(text("kind")))));
      EXPECT_NE(complaint(document), "") << key;
      removeMember(object, key);
      EXPECT_EQ(complaint(document).empty(), key == optional) << key;
      setMember(object, key, data_t(kept));
    }
    setMember(object, "more", whole(1));
    EXPECT_NE(complaint(document), "");
    removeMember(object, "more");
    EXPECT_EQ(complaint(document), "");
  }

  std::unique_ptr<JsonSchema> schema_;
  JsonReader reader_;
};

} // namespace

TEST_F(ReportSchemasTest, CheckReportsAreAccepted) {
  schema_ = std::make_unique<JsonSchema>("docs/check-report.schema.json");
  const std::string plugin = VLT_PLUGIN_PATH;
  const std::pair<std::string, const char*> rows[] = {
      {"--only 'versions.*' --seed 18446744073709551615 " + plugin, R"("outcome":"ok")"},
      {"--strict --only nulls.plugin " + plugin, R"("level":"advised")"},
      {"--only versions.interface '" +
           folder_.write("damaged.so",
                         "\x7f"
                         "ELF") +
           "'",
       R"("reason":"the library cannot be loaded)"},
      {"--timeout 0.1 --only batches.deep-nesting " + plugin, R"("outcome":"hung")"},
      {"--only conformance.events \"$(dirname " + plugin + ")\"/libtvclient.so.10.15",
       R"("differences":)"},
  };
  for (const auto& [arguments, member] : rows) {
    const std::string json = runShell("ostrovia-check-plugin --json " + arguments).out;
    EXPECT_EQ(schema_->complaint(json), "") << json;
    EXPECT_THAT(json, HasSubstr(member));
  }
}

TEST_F(ReportSchemasTest, OtherCheckReportsAreRefused) {
  schema_ = std::make_unique<JsonSchema>("docs/check-report.schema.json");
  data_t report = reader_.parseValue(
      runShell("ostrovia-check-plugin --json --only library.is-a-shared-object '" +
               folder_.write("damaged.so",
                             "\x7f"
                             "ELF") +
               "'")
          .out);
  expectEveryMemberCounts(report, report);
  auto& members = report.get<map_t>();
  data_t& counts = members[text("counts")];
  expectEveryMemberCounts(report, counts);
  data_t& check = *members[text("checks")].get<list_t>().begin();
  expectEveryMemberCounts(report, check, "differences");
  expectEveryMemberCounts(report, *check.get<map_t>()[text("differences")].get<list_t>().begin());
  setMember(check, "level", text("advised"));
  EXPECT_NE(complaint(report), "") << "an advised check has no clause";
}

TEST_F(ReportSchemasTest, SummariesAreAccepted) {
  schema_ = std::make_unique<JsonSchema>("docs/replay-summary.schema.json");
  for (const char* const arguments :
       {VLT_PROJECT_ROOT "/samples/site-day.ndjson", VLT_PROJECT_ROOT "/samples/failing.ndjson",
        "--direction transport " VLT_PROJECT_ROOT "/samples/events.ndjson",
        "--against " VLT_PLUGIN_PATH " " VLT_PROJECT_ROOT "/samples/events.ndjson",
        "--expect-events " VLT_PROJECT_ROOT "/samples/recordings/after " VLT_PROJECT_ROOT
        "/samples/recordings/before",
        "/dev/null"}) {
    const std::string json = runShell(std::string("ostrovia-replay --summary=json --log-level 2 ") +
                                      arguments + " 2>&1 >/dev/null | grep '^{'")
                                 .out;
    EXPECT_EQ(schema_->complaint(json), "") << json;
  }
}

TEST_F(ReportSchemasTest, OtherSummariesAreRefused) {
  schema_ = std::make_unique<JsonSchema>("docs/replay-summary.schema.json");
  data_t summary =
      reader_.parseValue(runShell("ostrovia-replay --summary=json --log-level 2 " VLT_PROJECT_ROOT
                                  "/samples/failing.ndjson 2>&1 >/dev/null | grep '^{'")
                             .out);
  expectEveryMemberCounts(summary, summary);
  auto& members = summary.get<map_t>();
  expectEveryMemberCounts(summary, members[text("batches")]);
  expectEveryMemberCounts(summary, members[text("plugin")]);
  expectEveryMemberCounts(summary, *members[text("reasons")].get<list_t>().begin());
  data_t& kinds = members[text("kinds")];
  expectEveryMemberCounts(summary, kinds);
  expectEveryMemberCounts(summary, kinds.get<map_t>()[text("alarms")]);
}

} // namespace com::velanto::connectivity::test
