// Creation while memory runs out: no codec and a line that says so, or else the right codec.
#include <gtest/gtest.h>

#include "tests/exhaustion/exhaustion_fixture.hpp"

namespace com::velanto::connectivity::test {
namespace {

struct configuration_t {
  const char* name;
  data_t (*settings)();
  bool is_good;
};

// The prefix is short: one that needs memory of the plug-in's own and finds none is the default.
const char* const LONG = "a text longer than what a string keeps";

const configuration_t CONFIGURATIONS[] = {
    {"tenant alone", []() -> data_t { return mapOf("tenantId", text("")); }, true},
    {"all keys",
     []() -> data_t {
       return mapOf("tenantId", text(LONG), "towardsHostChannelPrefix", text("p."),
                    "measurementSplittingChannel", text(LONG));
     },
     true},
    {"defaults after a list and an integer",
     []() -> data_t {
       return mapOf("tenantId", text("t"), "towardsHostChannelPrefix", listOf(text("p")),
                    "measurementSplittingChannel", data_t());
     },
     true},
    {"no tenant", []() -> data_t { return map_t(); }, false},
    {"empty tenant", []() -> data_t { return mapOf("tenantId", data_t()); }, false},
    {"tenant of a newer host", []() -> data_t { return mapOf("tenantId", tagged(11)); }, false},
    {"no configuration", [] { return data_t(); }, false},
};

class ExhaustedCreation : public ExhaustionFixture,
                          public ::testing::WithParamInterface<exhaustion_t> {
 protected:
  // Facts that tell the codec's settings: a measurement and an event of it.
  std::vector<std::string> eventsOf(void* codec) {
    std::vector<Message> batch;
    batch.push_back(notification(MEASUREMENT_PATH, measurementPayload()));
    batch.push_back(notification(EVENT_PATH, eventPayload()));
    library_.sendBatchTowardsHost(codec, batch.data(), batch.data() + batch.size());
    return {to_string(batch[0], false), to_string(batch[1], false)};
  }

  // One line at level 2, unless there was no memory for it. A host without further blocks ends
  // creation before the tenant is missed; a single one may be for a setting with a default.
  void expectRefusalReported(bool refused, const std::string& own_reason) {
    const std::vector<log_line_t> lines = takeLines();
    const bool may_be_lost = GetParam().memory == memory_t::OWN;
    ASSERT_TRUE(lines.size() == 1 || (lines.empty() && may_be_lost)) << lines.size();
    for (const log_line_t& line : lines) {
      EXPECT_EQ(line.level, 2);
      const std::string beginning = label() + "Exception from create: ";
      EXPECT_TRUE(line.text == beginning + NO_MEMORY || line.text == beginning + NO_TEXT ||
                  (line.text == own_reason && (may_be_lost || !refused || !GetParam().for_good)))
          << line;
    }
  }

  // Fails the first allocation, then the second, … until creation works as with memory.
  void exhaust(const configuration_t& configuration) {
    const data_t settings = configuration.settings();
    void* codec = create(settings);
    ASSERT_EQ(codec != nullptr, configuration.is_good);
    std::vector<std::string> events;
    if (codec != nullptr) events = eventsOf(codec);
    library_.destroy(codec);
    const std::vector<log_line_t> reference = takeLines();
    for (std::uint64_t n = 1; !HasFailure(); ++n) {
      SCOPED_TRACE(n);
      const held_t before;
      {
        const Exhausted exhausted(GetParam(), n);
        codec = create(settings);
      }
      const bool refused = refusals(GetParam()) > 0;
      if (codec == nullptr) {
        expectRefusalReported(refused, reference.empty() ? "" : reference[0].text);
      } else {
        EXPECT_FALSE(refused && GetParam().for_good);
        EXPECT_EQ(eventsOf(codec), events) << "made with other settings than asked for";
        library_.destroy(codec);
        EXPECT_EQ(takeLines(), std::vector<log_line_t>());
      }
      EXPECT_EQ(held_t(), before);
      if (!refused) {
        EXPECT_TRUE(n > 1 || !configuration.is_good) << "nothing was refused";
        return;
      }
    }
  }
};

TEST_P(ExhaustedCreation, IsRefusedAndReportedOrAsAskedFor) {
  for (const configuration_t& configuration : CONFIGURATIONS) {
    SCOPED_TRACE(configuration.name);
    exhaust(configuration);
  }
}

INSTANTIATE_TEST_SUITE_P(Memory, ExhaustedCreation, ::testing::ValuesIn(EXHAUSTIONS),
                         [](const auto& how) { return std::string(how.param.name); });

} // namespace
} // namespace com::velanto::connectivity::test
