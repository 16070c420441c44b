// Every sample explained with the real plug-in. An explanation must have each field once, and every
// kind of notification must become the event of docs/fields.md.
#include "tests/support/samples.hpp"

#include "tests/support/host_fixture.hpp"
#include "tests/tools/explain/accounting.hpp"
#include "tests/tools/explain/explain_fixture.hpp"
#include "tools/explain/silence.hpp"
#include "tools/host/plugin_library.hpp"

namespace com::velanto::connectivity::test {

namespace {

class SamplesTest : public HostFixture {
 protected:
  SamplesTest() {
    const data_t configuration = mapOf("tenantId", text("t4100"));
    chain_.emplace(library_, configuration, tools::Direction::TOWARDS_HOST, log_);
  }

  tools::call_result_t send(Message& message) {
    return std::move(chain_->send(std::span(&message, 1)));
  }
  bool comesOut(const Message& message) {
    const tools::Silence silence;
    Message sent = copyOf(message);
    return !send(sent).outputs.empty();
  }
  tools::explanation_t explained(const Message& message) {
    const tools::Silence silence; // for lines that the plug-in writes past the log
    Message sent = copyOf(message);
    tools::call_result_t result = send(sent);
    after_ = tools::Trace(result.outputs);
    record_ = {};
    record_.outputs = std::move(result.outputs);
    record_.log = std::move(result.log);
    tools::Probe probe(message, [this](Message& changed) { return send(changed); });
    return tools::explain(record_, probe);
  }

  const tools::LogCapture capture_;
  const tools::PluginLibrary library_{VLT_PLUGIN_PATH};
  std::vector<tools::log_line_t> log_;
  std::optional<tools::ReplayChain> chain_;
  tools::record_t record_;
  tools::Trace after_;
};

} // namespace

TEST_F(SamplesTest, EveryLeafAppearsOnce) {
  for (const sample_t& sample : readSamples()) {
    const tools::explanation_t told = explained(sample.message);
    EXPECT_TRUE(told.stable) << sample.place;
    EXPECT_FALSE(told.limited) << sample.place;
    EXPECT_EQ(unaccounted(tools::Trace(sample.message), after_, told.rows), "") << sample.place;
    for (const tools::row_t& row : told.rows) {
      EXPECT_NE(row.fate, tools::Fate::UNKNOWN) << sample.place;
    }
    const bool blamed = !told.blame.faults.empty() || !told.blame.suspects.empty();
    EXPECT_EQ(blamed, record_.outputs.empty()) << sample.place;
  }
}

// The fields at fault in samples/failing.ndjson: with them mended, the message comes out. Messages
// that come out as they are have no fault, which the test above shows.
TEST_F(SamplesTest, MendingEachFaultHelps) {
  std::size_t proven = 0;
  for (const sample_t& sample : readSamples()) {
    if (comesOut(sample.message)) continue;
    const tools::explanation_t told = explained(sample.message);
    if (told.blame.faults.empty()) continue;
    ++proven;
    Message mended = copyOf(sample.message);
    JsonReader reader;
    for (const tools::faulty_place_t& fault : told.blame.faults) {
      tools::apply(mended, {fault.path, reader.parseValue(fault.mended)});
    }
    EXPECT_EQ(send(mended).outputs.size(), 1u) << sample.place;
  }
  EXPECT_EQ(proven, 63u);
}

} // namespace com::velanto::connectivity::test
