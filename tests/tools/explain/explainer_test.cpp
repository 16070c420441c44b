#include "tools/explain/explainer.hpp"

#include <sstream>

#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

class ExplainerTest : public HostFixture {
 protected:
  // The explanation by an explainer of the odd plug-in for a line that became `output`.
  std::string told(const char* way, const std::string& line, const std::string& output,
                   std::size_t pass = 0) {
    std::ostringstream out;
    const data_t configuration = mapOf("tenantId", text(way));
    tools::Explainer explainer(library_, configuration, tools::Direction::TOWARDS_HOST,
                               tools::ExplanationForm::TEXT, out);
    tools::record_t record;
    record.file = &file_;
    record.line_number = 1;
    record.line = line;
    record.pass = pass;
    record.outcome = tools::Outcome::PASSED;
    record.outputs.push_back(reader_.parseMessage(output));
    explainer.take(record);
    explainer.pause();
    explainer.finish();
    EXPECT_EQ(explainer.lostBlocks(), 0);
    return out.str();
  }

  const std::string file_ = "in";
  const tools::LogCapture capture_;
  const tools::PluginLibrary library_{VLT_ODD_PLUGIN_PATH};
  JsonReader reader_;
};

const char* const LINE = R"({"payload":{"a":1,"b":2,"c":[1]}})";

} // namespace

TEST_F(ExplainerTest, AsksAPluginOfItsOwn) {
  EXPECT_EQ(told("swap", LINE, R"({"payload":{"a":2,"b":1,"c":[1]}})"),
            "in:1: no path, passed\n  unchanged  c\n  renamed    a → b\n             b → a\n");
  EXPECT_EQ(told("sum", LINE, R"({"payload":{"sum":3,"c":[1]}})"),
            "in:1: no path, passed\n  unchanged  c\n  converted  a 1, b 2 → sum 3\n");
  EXPECT_EQ(told("", LINE, LINE), "in:1: no path, passed\n  unchanged  everything\n");
}

TEST_F(ExplainerTest, ARepetitionIsNotExplainedAgain) {
  EXPECT_EQ(told("swap", LINE, LINE, 1), "");
}

TEST_F(ExplainerTest, APluginThatAnswersOtherwiseIsNotBelieved) {
  EXPECT_EQ(told("swap", LINE, R"({"payload":{}})"),
            "in:1: no path, passed\n"
            "  unknown    when asked again, the plug-in gives something else\n");
}

} // namespace com::velanto::connectivity::test
