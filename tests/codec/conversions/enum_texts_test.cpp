// The texts of the enumerations' values.
#include "codec/conversions/enum_texts.hpp"

#include <initializer_list>
#include <limits>

#include "codec/conversions/alarm.hpp"
#include "codec/conversions/operation.hpp"
#include "tests/codec/notifications.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class Texts : public HostFixture {};

// Expects these texts in the order of the values, and the refusal of any other value.
template <class Enumeration>
void expectTexts(constant_t const& (*to_text)(Enumeration),
                 std::initializer_list<const char*> texts) {
  int value = 0;
  for (const char* const expected : texts) {
    EXPECT_STREQ(to_text(static_cast<Enumeration>(value++)).text(), expected);
  }
  for (const int other : {value, value + 1, 255, -1, std::numeric_limits<int>::max()}) {
    EXPECT_EQ(errorOf([&] { (void)to_text(static_cast<Enumeration>(other)); }),
              "Unrecognized enum value.");
  }
}

TEST_F(Texts, FollowTheOrderOfTheValues) {
  expectTexts(alarmSeverityToDataTString, {"CRITICAL", "MAJOR", "MINOR", "WARNING"});
  expectTexts(alarmStatusToDataTString, {"ACTIVE", "ACKNOWLEDGED", "CLEARED"});
  expectTexts(operationStatusToDataTString, {"SUCCESSFUL", "FAILED", "EXECUTING", "PENDING"});
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
