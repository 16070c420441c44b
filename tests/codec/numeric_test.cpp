// Numbers whose reading depends on the locale, and their tails. The lines of
// tools/check/conformance/ have all others.
#include "codec/payload_fields.hpp"

#include <clocale>
#include <string>

#include "tests/codec/notifications.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

using NumericTest = HostFixture;

bool numeric(const char* content) {
  const bool owned = dataTConvertableToFloat(text(content));
  EXPECT_EQ(dataTConvertableToFloat(borrowed(content)), owned) << content;
  return owned;
}

// Sets a locale with a decimal comma, and restores the previous one at the end of its life.
class DecimalComma {
 public:
  DecimalComma() = default;
  DecimalComma(const DecimalComma&) = delete;
  DecimalComma& operator=(const DecimalComma&) = delete;
  ~DecimalComma() { setlocale(LC_NUMERIC, before_.c_str()); }
  [[nodiscard]] bool installed() const { return installed_; }

 private:
  static bool install() {
    for (const char* const name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8",
                                   "fr_FR.utf8", "nl_NL.UTF-8", "it_IT.UTF-8", "es_ES.UTF-8"}) {
      if (setlocale(LC_NUMERIC, name) != nullptr && *localeconv()->decimal_point == ',')
        return true;
    }
    return false;
  }

  std::string before_ = setlocale(LC_NUMERIC, nullptr);
  bool installed_ = install();
};

TEST_F(NumericTest, FollowsTheLocalesDecimalComma) {
  const DecimalComma locale;
  if (!locale.installed()) GTEST_SKIP() << "no locale with a decimal comma is installed";
  EXPECT_TRUE(numeric(",5"));
  EXPECT_FALSE(numeric(".5"));
  EXPECT_TRUE(numeric("1.5"));
  EXPECT_TRUE(numeric("1,5"));
}

TEST_F(NumericTest, AnyTailButHexadecimalMayFollow) {
  for (char c = 1; c < 127; ++c) {
    EXPECT_EQ(numeric((std::string("1") + c).c_str()), c != 'x' && c != 'X') << c;
  }
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
