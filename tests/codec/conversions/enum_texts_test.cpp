// The rows between an enumeration's values and their texts, and the enumerations that have them.
#include "codec/conversions/enum_texts.hpp"

#include <limits>

#include "codec/conversions/alarm.hpp"
#include "codec/conversions/operation.hpp"
#include "tests/codec/notifications.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

enum class Colour { RED, GREEN };

class Texts : public HostFixture {
 protected:
  const data_t red_ = text("RED");
  const data_t green_ = borrowed("GREEN");
  const EnumTexts<Colour, 2> texts_ = {{&red_, &green_}};
};

TEST_F(Texts, RowsMatchInBothDirections) {
  EXPECT_EQ(texts_.fromString("RED", "colour"), Colour::RED);
  EXPECT_EQ(texts_.fromString("GREEN", "colour"), Colour::GREEN);
  EXPECT_EQ(&texts_.toDataTString(Colour::RED), &red_);
  EXPECT_EQ(&texts_.toDataTString(Colour::GREEN), &green_);
}

TEST_F(Texts, UnknownTextIsNamedWithWhatItShouldBe) {
  for (const char* const other : {"", "red", "REDS", "RE", "BLUE"}) {
    EXPECT_EQ(error_of([&] { (void)texts_.fromString(other, "colour"); }),
              std::string("Unrecognized colour: ") + other);
  }
}

TEST_F(Texts, ValueWithoutARowIsRefused) {
  for (const int value : {2, -1, std::numeric_limits<int>::min()}) {
    EXPECT_EQ(error_of([&] { (void)texts_.toDataTString(static_cast<Colour>(value)); }),
              "Unrecognized enum value.");
  }
}

// The texts of an enumeration in the order of its values, and the refusal of any other value.
template <class Text, class Enumeration>
void expectTexts(Text (*toText)(Enumeration), std::initializer_list<const char*> texts) {
  int value = 0;
  for (const char* const expected : texts) {
    EXPECT_TRUE(same(toText(static_cast<Enumeration>(value++)), text(expected)));
  }
  for (const int other : {value, value + 1, 255, -1, std::numeric_limits<int>::max()}) {
    EXPECT_EQ(error_of([&] { (void)toText(static_cast<Enumeration>(other)); }),
              "Unrecognized enum value.");
  }
}

TEST_F(Texts, ValuesOfTheEnumerationsHaveTheirTextsInOrder) {
  expectTexts(alarmSeverityToDataTString, {"CRITICAL", "MAJOR", "MINOR", "WARNING"});
  expectTexts(alarmStatusToDataTString, {"ACTIVE", "ACKNOWLEDGED", "CLEARED"});
  expectTexts(operationStatusToDataTString, {"SUCCESSFUL", "FAILED", "EXECUTING", "PENDING"});
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
