// The lines that explanation_json.cpp makes.
#include "tests/support/pattern.hpp"
#include "tests/tools/explain/explain_fixture.hpp"

namespace com::velanto::connectivity::test {

namespace {

class ExplanationJsonTest : public ExplainFixture {
 protected:
  std::string told(const std::string& line, const codec_t& codec) {
    const tools::explanation_t explanation = explainedLine(line, codec);
    if (record_.outputs.empty()) record_.outcome = tools::Outcome::DROPPED;
    static const Pattern RUNS(R"("runs":[1-9][0-9]*)");
    return RUNS.replacedIn(tools::explanationJson(record_, explanation), "\"runs\":N");
  }
};

} // namespace

TEST_F(ExplanationJsonTest, FieldsHavePathsAndExactValues) {
  EXPECT_EQ(
      told(R"({"metadata":{"p":"x"},"payload":{"a":"1","n":7,"l":[1],"copy":"c"}})",
           [](Message& message) {
             auto& payload = message.getPayload().get<map_t>();
             taken(message.getMetadataMap(), "p");
             payload[text("b")] = taken(payload, "a");
             at(payload, "copy") = data_t(at(payload, "copy"));
             payload[text("half")] =
                 real(static_cast<double>(at(payload, "n").get<std::int64_t>()) / 2);
             return true;
           }),
      R"({"at":"in:1","kind":"no path","outcome":"passed","unchanged":false,"fields":[)"
      R"({"fate":"unchanged","from":[{"path":["payload","copy"],"value":"c"}],)"
      R"("to":[{"path":["payload","copy"],"value":"c"}],"copied":true},)"
      R"({"fate":"unchanged","from":[{"path":["payload","l"]}],"to":[{"path":["payload","l"]}]},)"
      R"({"fate":"unchanged","from":[{"path":["payload","n"],"value":7}],)"
      R"("to":[{"path":["payload","n"],"value":7}]},)"
      R"({"fate":"renamed","from":[{"path":["payload","a"],"value":"1"}],)"
      R"("to":[{"path":["payload","b"],"value":"1"}]},)"
      R"({"fate":"converted","from":[],"to":[{"path":["payload","half"],"value":3.5}],)"
      R"("with":[{"path":["payload","n"],"value":7}]},)"
      R"({"fate":"lost","from":[{"path":["metadata","p"],"value":"x"}],"to":[]}],)"
      R"("log":[],"runs":N,"limited":false,"stable":true})"
      "\n");
}

TEST_F(ExplanationJsonTest, DroppedMessagesHaveFaultsOrSuspects) {
  const codec_t codec = onPayload([](map_t& payload) {
    if (!has(payload, "text")) throw std::runtime_error("no key 'text'");
    if (has(payload, "bad")) throw std::runtime_error("bad 'bad'");
    payload[text("type")] = text("T");
  });
  const std::string proven = told(R"({"payload":{"a":1}})", codec);
  EXPECT_NE(proven.find(R"("faults":[{"path":["payload","text"],"missing":true,"mended":"x"}],)"
                        R"("suspects":[],"log":[{"level":3,"text":"no key 'text'"}])"),
            std::string::npos)
      << proven;
  const std::string suspected = told(R"({"payload":{"text":"t","bad":[1],"n":1}})", codec);
  EXPECT_NE(
      suspected.find(R"("faults":[],"suspects":[{"path":["payload","bad"],"missing":false}])"),
      std::string::npos)
      << suspected;
}

TEST_F(ExplanationJsonTest, LostFieldsTellTheResultWithoutThem) {
  const std::string shown = told(R"({"payload":{"needed":"n"}})", onPayload([](map_t& payload) {
                                   if (taken(payload, "needed").empty()) {
                                     throw std::runtime_error("no");
                                   }
                                 }));
  EXPECT_NE(shown.find(R"("to":[],"without":"dropped"})"), std::string::npos) << shown;
}

TEST_F(ExplanationJsonTest, MalformedLinesHaveTheirReason) {
  tools::record_t record;
  const std::string file = "in";
  record.file = &file;
  record.outcome = tools::Outcome::MALFORMED;
  record.malformed = "no \"JSON\"";
  EXPECT_EQ(tools::explanationJson(record, {}),
            R"({"at":"in:0","kind":"no path","outcome":"malformed","reason":"no \"JSON\""})"
            "\n");
}

} // namespace com::velanto::connectivity::test
