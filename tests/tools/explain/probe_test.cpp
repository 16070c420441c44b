#include "tools/explain/probe.hpp"

#include "tests/tools/explain/explain_fixture.hpp"

namespace com::velanto::connectivity::test {

namespace {

class ProbeTest : public ExplainFixture {
 protected:
  tools::Probe probeOf(const Message& message, const codec_t& codec) {
    return {message, [this, codec](Message& changed) { return run(changed, codec); }, 100'000};
  }
};

bool pass(Message&) { return true; }

std::string payloadOf(const tools::Trace& trace) {
  const tools::node_t* const payload = trace.find({{"payload"}});
  return payload == nullptr ? "" : payload->json;
}

} // namespace

TEST_F(ProbeTest, AnswersHaveInputAndOutcome) {
  const Message message(whole(5));
  const tools::answer_t answer = probeOf(message, [](Message& changed) {
                                   changed.getPayload() = text("five");
                                   return true;
                                 }).ask();
  EXPECT_EQ(payloadOf(answer.before), "5");
  EXPECT_EQ(payloadOf(answer.after), "\"five\"");
  EXPECT_TRUE(answer.cameOut());
  EXPECT_FALSE(answer.passed());
  EXPECT_EQ(message.getPayload(), whole(5)); // it takes further questions
}

TEST_F(ProbeTest, ChangesAreMadeInOrder) {
  const Message message(mapOf("a", whole(1)));
  const std::array<tools::change_t, 2> changes = {tools::change_t{{{"payload"}}, whole(2)},
                                                  tools::change_t{{{"payload"}}, whole(3)}};
  tools::Probe probe = probeOf(message, pass);
  const auto answer = probe.ask(changes);
  ASSERT_TRUE(answer);
  EXPECT_EQ(payloadOf(answer->after), "3");
  EXPECT_TRUE(answer->passed());
  EXPECT_EQ(probe.runs(), 1u);
}

TEST_F(ProbeTest, FailuresAreLoggedTracesAreNot) {
  const Message message(whole(5));
  const tools::Probe probe(message, [](Message&) {
    tools::call_result_t result;
    result.log = {{3, "failed"}, {6, "trace"}, {2, "twice"}};
    return result;
  });
  const tools::answer_t answer = probe.ask();
  EXPECT_FALSE(answer.cameOut());
  EXPECT_EQ(answer.log, "failed\ntwice\n");
}

TEST_F(ProbeTest, ABoundLimitsValues) {
  map_t many;
  for (int i = 0; i < 2000; ++i) many[text(std::to_string(i).c_str())] = data_t();
  const Message message{data_t(std::move(many))};
  tools::Probe probe = probeOf(message, pass);
  const tools::change_t none = tools::change_t::removal({{"payload"}, {"x"}});
  while (probe.ask(none)) ASSERT_LT(probe.runs(), 1000u);
  EXPECT_EQ(probe.runs(), 48u);
  EXPECT_TRUE(probe.exhausted());
}

} // namespace com::velanto::connectivity::test
