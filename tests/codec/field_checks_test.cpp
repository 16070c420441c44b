// Reading one field: the error texts whole, and what counts as a number.
#include "codec/field_checks.hpp"

#include <clocale>
#include <limits>
#include <string>

#include "tests/codec/notifications.hpp"
#include "tests/support/stderr_capture.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class FieldChecks : public HostFixture {};
class NumericTest : public HostFixture {};

// The error of a get that writes to standard error, which is left out.
template <class Action>
std::string quiet_error_of(const Action& action) {
  std::string error;
  stderr_of([&] { error = error_of(action); });
  return error;
}

TEST_F(FieldChecks, TextIsReadInPlace) {
  const data_t owned = text("a");
  const data_t lent = borrowed("b");
  EXPECT_STREQ(getFromDataTReportingKey<char const*>(owned, "k"), "a");
  EXPECT_STREQ(getFromDataTReportingKey<char const*>(lent, "k"), "b");
  const data_t null = null_text();
  EXPECT_EQ(getFromDataTReportingKey<char const*>(null, "k"), nullptr);
}

TEST_F(FieldChecks, MapIsAReferenceIntoTheValue) {
  data_t value = map_of("a", whole(1));
  auto& map = getFromDataTReportingKey<map_t&>(value, "k");
  EXPECT_EQ(static_cast<const void*>(&map), static_cast<const void*>(&value));
  map[text("b")] = whole(2);
  EXPECT_TRUE(same(value, map_of("a", whole(1), "b", whole(2))));
}

TEST_F(FieldChecks, IntegerIsReadWithAll64Bits) {
  const data_t value = whole(std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(getFromDataTReportingKey<long long>(value, "k"),
            std::numeric_limits<std::int64_t>::min());
}

TEST_F(FieldChecks, WrongKindNamesKeyAskedAndActual) {
  const auto error = [](data_t&& value) {
    return quiet_error_of([&] { (void)getFromDataTReportingKey<long long>(value, "count"); });
  };
  const std::string asked =
      "Problem with key 'count': Incorrect type in get (you asked for integer but it's actually ";
  EXPECT_EQ(error(text("3")), asked + "string)");
  EXPECT_EQ(error(borrowed("3")), asked + "string)");
  EXPECT_EQ(error(real(3)), asked + "double)");
  EXPECT_EQ(error(truth(true)), asked + "boolean)");
  EXPECT_EQ(error(decimal(3)), asked + "decimal)");
  EXPECT_EQ(error(list_of()), asked + "list)");
  EXPECT_EQ(error(map_of()), asked + "map)");
  EXPECT_EQ(error(bytes("3")), asked + "buffer)");
  EXPECT_EQ(error(custom()), asked + "custom)");
}

TEST_F(FieldChecks, EachInstanceNamesItsOwnKind) {
  data_t number = whole(1);
  EXPECT_EQ(
      quiet_error_of([&] { (void)getFromDataTReportingKey<char const*>(number, "status"); }),
      "Problem with key 'status': Incorrect type in get (you asked for string but it's actually "
      "integer)");
  EXPECT_EQ(quiet_error_of([&] { (void)getFromDataTReportingKey<map_t&>(number, "source"); }),
            "Problem with key 'source': Incorrect type in get (you asked for map but it's actually "
            "integer)");
}

TEST_F(FieldChecks, WrongKindWritesOneLineToStandardError) {
  const data_t number = whole(1);
  const std::string written = stderr_of([&] {
    EXPECT_THROW((void)getFromDataTReportingKey<char const*>(number, "k"), std::runtime_error);
  });
  EXPECT_EQ(written, wrong_kind_line<const char* const>());
}

TEST_F(FieldChecks, NothingToReadIsReportedWithoutALine) {
  for (const std::uint32_t tag : {0U, 11U, 4294967295U}) {
    data_t value = tagged(tag);
    std::string error;
    const std::string written = stderr_of([&] {
      error = error_of([&] { (void)getFromDataTReportingKey<map_t&>(value, "source"); });
    });
    EXPECT_EQ(error, "Problem with key 'source': Get from empty") << tag;
    EXPECT_EQ(written, "") << tag;
  }
}

// A value whose typed access throws something that is no std::exception.
struct Hostile {
  template <class T>
  T* get_if() const {
    throw 42;
  }
  template <class T>
  [[nodiscard]] std::runtime_error get_error() const {
    return std::runtime_error("not reached");
  }
};

TEST_F(FieldChecks, WhatIsNoStandardExceptionPassesThrough) {
  const Hostile value;
  EXPECT_THROW((void)getFromDataTReportingKey<char const*>(value, "k"), int);
}

TEST_F(FieldChecks, TypedGetThatNotesReadsWhatTheOtherReads) {
  Fault fault;
  EXPECT_STREQ(getFromDataTNotingFault<char const*>(borrowed("a"), "k", fault), "a");
  EXPECT_EQ(getFromDataTNotingFault<char const*>(null_text(), "k", fault), nullptr);
  EXPECT_EQ(getFromDataTNotingFault<long long>(whole(7), "k", fault), 7);
  EXPECT_FALSE(fault);
}

TEST_F(FieldChecks, TypedGetThatNotesReturnsNothingForAFault) {
  Fault fault;
  EXPECT_EQ(getFromDataTNotingFault<long long>(data_t(), "count", fault), 0);
  ASSERT_TRUE(fault);
  EXPECT_STREQ(fault.what(), "Problem with key 'count': Get from empty");
  // Nothing is read, or written to standard error, once there is one.
  const std::string diagnostics = stderr_of([&] {
    EXPECT_EQ(getFromDataTNotingFault<long long>(whole(7), "k", fault), 0);
    EXPECT_EQ(getFromDataTNotingFault<char const*>(whole(7), "k", fault), nullptr);
  });
  EXPECT_EQ(diagnostics, "");
  EXPECT_STREQ(fault.what(), "Problem with key 'count': Get from empty");
}

TEST_F(FieldChecks, FirstOfSeveralValuesThatIsNoStringIsNoted) {
  const data_t string = text("a");
  const data_t number = whole(1);
  Fault fault;
  noteUnlessStrings({{"a", string}, {"b", string}}, fault);
  EXPECT_FALSE(fault);
  noteUnlessStrings({{"a", string}, {"b", number}, {"c", number}}, fault);
  ASSERT_TRUE(fault);
  EXPECT_STREQ(fault.what(), "Value for key 'b' is not a string.");
  noteUnlessStrings({{"a", number}}, fault);
  EXPECT_STREQ(fault.what(), "Value for key 'b' is not a string.");
}

TEST_F(FieldChecks, BothStringKindsAreStrings) {
  EXPECT_NO_THROW(ensureValueDataTIsString("k", text("")));
  EXPECT_NO_THROW(ensureValueDataTIsString("k", borrowed("a")));
  EXPECT_NO_THROW(ensureValueDataTIsString("k", null_text()));
  EXPECT_NO_THROW(ensureValueDataTIsString("k", borrowed(nullptr)));
}

TEST_F(FieldChecks, EveryOtherKindIsNoString) {
  const auto error = [](data_t&& value) {
    return error_of([&] { ensureValueDataTIsString("text", value); });
  };
  const std::string expected = "Value for key 'text' is not a string.";
  EXPECT_EQ(error(data_t()), expected);
  EXPECT_EQ(error(truth(true)), expected);
  EXPECT_EQ(error(real(1)), expected);
  EXPECT_EQ(error(whole(1)), expected);
  EXPECT_EQ(error(decimal(1)), expected);
  EXPECT_EQ(error(list_of(text("a"))), expected);
  EXPECT_EQ(error(map_of()), expected);
  EXPECT_EQ(error(bytes("a")), expected);
  EXPECT_EQ(error(custom()), expected);
  EXPECT_EQ(error(tagged(11)), expected);
}

bool numeric(const char* content) {
  const bool owned = dataTConvertableToFloat(text(content));
  EXPECT_EQ(dataTConvertableToFloat(borrowed(content)), owned) << content;
  return owned;
}

TEST_F(NumericTest, NumbersAreNumericAndOtherKindsAreNot) {
  EXPECT_TRUE(dataTConvertableToFloat(real(1.5)));
  EXPECT_TRUE(dataTConvertableToFloat(real(std::numeric_limits<double>::quiet_NaN())));
  EXPECT_TRUE(dataTConvertableToFloat(whole(0)));
  EXPECT_TRUE(dataTConvertableToFloat(decimal(0)));
  EXPECT_FALSE(dataTConvertableToFloat(data_t()));
  EXPECT_FALSE(dataTConvertableToFloat(truth(true)));
  EXPECT_FALSE(dataTConvertableToFloat(list_of(whole(1))));
  EXPECT_FALSE(dataTConvertableToFloat(map_of("value", whole(1))));
  EXPECT_FALSE(dataTConvertableToFloat(bytes("1")));
  EXPECT_FALSE(dataTConvertableToFloat(custom()));
  EXPECT_FALSE(dataTConvertableToFloat(tagged(11, 1)));
}

TEST_F(NumericTest, TextsThatBeginWithANumberAreNumeric) {
  for (const char* const content :
       {"0",       "42",     "-42",  "+42",         "1e3",      "1E-3",     "1.5", " 42",
        "\t\n 42", "12abc",  "42 ",  "1 2",         ".5",       "-.5",      "5.",  "1e",
        "1e+",     "inf",    "-inf", "INF",         "infinity", "InFiNiTy", "nan", "NaN",
        "-nan",    "nan(1)", "nano", "information", "1e999",    "1e-999",   "0b1", "1,5"}) {
    EXPECT_TRUE(numeric(content)) << content;
  }
}

TEST_F(NumericTest, TextsThatDoNotAreNot) {
  for (const char* const content : {"", " ", ".", "+", "-", "+-1", "- 1", "abc", "e3", ".e3", ",5",
                                    "a1", "in", "na", "#1", "\xc2\xa0 1", "\xef\xbc\x91"}) {
    EXPECT_FALSE(numeric(content)) << content;
  }
}

TEST_F(NumericTest, AnXAnywhereRefusesTheText) {
  for (const char* const content : {"0x10", "0X10", "0x1p3", "-0x1", "1x", "1X", "12abcx", "x", "X",
                                    "xX", "1 x", "infx", "nan(x)", "42, max. 50"}) {
    EXPECT_FALSE(numeric(content)) << content;
  }
}

TEST_F(NumericTest, NullTextIsReadAsTheEmptyOne) {
  EXPECT_FALSE(dataTConvertableToFloat(null_text()));
  EXPECT_FALSE(dataTConvertableToFloat(borrowed(nullptr)));
}

// Puts a locale with a decimal comma in place; the one before is back afterwards.
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

TEST_F(NumericTest, DecimalCommaOfTheLocaleIsFollowed) {
  const DecimalComma locale;
  if (!locale.installed()) GTEST_SKIP() << "no locale with a decimal comma is installed";
  EXPECT_TRUE(numeric(",5"));
  EXPECT_FALSE(numeric(".5"));
  EXPECT_TRUE(numeric("1.5"));
  EXPECT_TRUE(numeric("1,5"));
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
