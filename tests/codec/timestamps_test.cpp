// Timestamps as rows: the text, the seconds or nothing, and why.
#include "codec/timestamps.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <vector>

#include "tests/codec/time_reference.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using seconds_t = boost::optional<double>;

struct time_row_t {
  const char* text;
  seconds_t result;
  const char* reason;
};

const seconds_t NOTHING = boost::none;
constexpr double T = 1680674828.0; // 2023-04-05T06:07:08Z
constexpr double HOUR = 3600.0;
constexpr double MINUTE = 60.0;

// Bit for bit, so that -0.0 and the last digit count.
void expectRows(const std::vector<time_row_t>& rows) {
  for (const time_row_t& row : rows) {
    const seconds_t actual = tryParseTime(row.text);
    EXPECT_EQ(actual.has_value(), row.result.has_value()) << row.text << ": " << row.reason;
    EXPECT_EQ(test::bits_of(actual), test::bits_of(row.result)) << row.text << ": " << row.reason;
    EXPECT_EQ(test::bits_of(test::reference_time(row.text)), test::bits_of(row.result))
        << "reference: " << row.text;
  }
}

TEST(TryParseTime, PlainTimestampsGiveSecondsSinceTheEpoch) {
  expectRows({
      {"2023-04-05T06:07:08Z", 1680674828.0, "no fraction"},
      {"2023-04-05T06:07:08.123Z", 1680674828.123, "three digits"},
      {"2023-04-05T06:07:08.045Z", 1680674828.045, "a leading zero counts"},
      {"2023-04-05T06:07:08.000Z", 1680674828.0, "zero thousandths"},
      {"2023-04-05T06:07:08.999Z", 1680674828.999, "the largest fraction"},
      {"1970-01-01T00:00:00Z", 0.0, "the epoch, positive zero"},
      {"1970-01-01T00:00:00.001Z", 0.001, "a thousandth after it"},
      {"1969-12-31T23:59:59Z", -1.0, "a second before it"},
      {"1969-12-31T23:59:59.250Z", -0.75, "fractions count upwards before it too"},
      {"2000-02-29T00:00:00Z", 951782400.0, "leap day of a leap century"},
      {"0000-01-01T00:00:00Z", -62167219200.0, "year 0"},
      {"9999-12-31T23:59:59Z", 253402300799.0, "the last second that has four digits of year"},
  });
}

TEST(TryParseTime, ZonesAreTakenOff) {
  expectRows({
      {"2023-04-05T06:07:08+01:00", 1680671228.0, "an hour earlier"},
      {"2023-04-05T06:07:08-05:30", 1680694628.0, "the sign is the minutes' too"},
      {"2023-04-05T06:07:08-0530", 1680694628.0, "without a colon"},
      {"2023-04-05T06:07:08+0100", 1680671228.0, "the same eastwards"},
      {"2023-04-05T06:07:08-00:30", T + 30 * MINUTE, "hours of zero have no sign; the '-' is seen"},
      {"2023-04-05T06:07:08.123+01:00", 1680671228.123, "behind a fraction"},
      {"2023-04-05T06:07:08.123-0530", 1680694628.123, "behind a fraction, without a colon"},
      {"2023-04-05T06:07:08z", T, "lower-case z"},
      {"2023-04-05T06:07:08.123z", 1680674828.123, "lower-case z behind a fraction"},
      {"2023-04-05T06:07:08:", T, "both parts empty"},
      {"2023-04-05T06:07:08.500:", 1680674828.5, "both parts empty behind a fraction"},
  });
}

TEST(TryParseTime, OffsetsAreWhateverStoiMakesOfThem) {
  expectRows({
      {"2023-04-05T06:07:08+1:2", T - HOUR - 2 * MINUTE, "one digit each"},
      {"2023-04-05T06:07:0801:00", T - HOUR, "no sign"},
      {"2023-04-05T06:07:08+24:00", T - 24 * HOUR, "hours have no limit"},
      {"2023-04-05T06:07:08+99:99", T - 99 * HOUR - 99 * MINUTE, "nor have minutes"},
      {"2023-04-05T06:07:089999:9", T - 9999 * HOUR - 9 * MINUTE, "the longest hours"},
      {"2023-04-05T06:07:081:9999", T - HOUR - 9999 * MINUTE, "the longest minutes"},
      {"2023-04-05T06:07:08 1: 2", T - HOUR - 2 * MINUTE, "leading blanks are skipped"},
      {"2023-04-05T06:07:08\t1:\n2", T - HOUR - 2 * MINUTE, "tabs and line feeds too"},
      {"2023-04-05T06:07:08+1a:2b", T - HOUR - 2 * MINUTE, "what follows a number is ignored"},
      {"2023-04-05T06:07:08+1 :2 ", T - HOUR - 2 * MINUTE, "blanks behind it as well"},
      {"2023-04-05T06:07:08+01:+5", T - HOUR - 5 * MINUTE, "minutes with a sign"},
      {"2023-04-05T06:07:08+01:-5", T - HOUR - 5 * MINUTE, "a negative sign is turned round"},
      {"2023-04-05T06:07:08-01:-5", T + HOUR - 5 * MINUTE, "turned round, whatever the hours"},
      {"2023-04-05T06:07:085-:30", T - 5 * HOUR + 30 * MINUTE, "a '-' behind the hours"},
      {"2023-04-05T06:07:08+5:3-", T - 5 * HOUR + 3 * MINUTE, "a '-' behind the minutes"},
      {"2023-04-05T06:07:0801000", T - 10 * HOUR, "three characters of hours without a sign"},
      {"2023-04-05T06:07:08+010", T - HOUR, "one digit of minutes"},
      {"2023-04-05T06:07:08+01-3", T - HOUR - 3 * MINUTE, "minutes -3, turned round"},
      {"2023-04-05T06:07:08 0130", T - HOUR - 30 * MINUTE, "hours with a blank"},
      {"2023-04-05T06:07:08+01 5", T - HOUR - 5 * MINUTE, "minutes with a blank"},
      {"2023-04-05T06:07:08+1:1:1", T - HOUR - MINUTE, "the first colon splits"},
      {"2023-04-05T06:07:08:30", NOTHING, "minutes without hours"},
      {"2023-04-05T06:07:08+01:", NOTHING, "hours without minutes"},
      {"2023-04-05T06:07:08+01", NOTHING, "hours without minutes or colon"},
      {"2023-04-05T06:07:08::", NOTHING, "no hours; the minutes are a colon"},
      {"2023-04-05T06:07:08+0", NOTHING, "less than three characters"},
      {"2023-04-05T06:07:08+", NOTHING, "a sign alone"},
      {"2023-04-05T06:07:08x", NOTHING, "one letter that is no zone"},
      {"2023-04-05T06:07:08+-1:00", NOTHING, "two signs"},
      {"2023-04-05T06:07:08+ 1:00", NOTHING, "a blank behind the sign"},
      {"2023-04-05T06:07:08ab:00", NOTHING, "hours are no number"},
      {"2023-04-05T06:07:08+01:ab", NOTHING, "minutes are no number"},
      {"2023-04-05T06:07:08+01:-", NOTHING, "minutes are a sign alone"},
      {"2023-04-05T06:07:08+01ab", NOTHING, "minutes without a colon are no number"},
      {"2023-04-05T06:07:08Z:00", NOTHING, "a colon makes the Z hours"},
      {"2023-04-05T06:07:08Z:", NOTHING, "a colon makes the Z hours, minutes are missing"},
  });
}

TEST(TryParseTime, WhatFollowsTheSixCharactersOfTheZoneIsIgnored) {
  expectRows({
      {"2023-04-05T06:07:08+01:00[Europe]", T - HOUR, "a region"},
      {"2023-04-05T06:07:08+01:00:30", T - HOUR, "seconds of offset"},
      {"2023-04-05T06:07:08+01:005", T - HOUR, "a third digit of minutes"},
      {"2023-04-05T06:07:08-0530 and more", T + 5 * HOUR + 30 * MINUTE, "any text"},
      {"2023-04-05T06:07:08Zulu", T, "letters behind the Z"},
      {"2023-04-05T06:07:08Z-", T, "a sign behind the Z"},
      {"2023-04-05T06:07:08Z     :", T, "a colon behind the sixth character"},
      {"2023-04-05T06:07:08+1x5  :00", T - HOUR - 5 * MINUTE, "so the zone is +1x5 and two blanks"},
  });
}

TEST(TryParseTime, FractionsCountAsThousandthsAndTakeUpFourCharacters) {
  expectRows({
      {"2023-04-05T06:07:08.Z", NOTHING, "no digit: no zone behind position 23"},
      {"2023-04-05T06:07:08.5Z", NOTHING, "one digit: the zone would start behind the end"},
      {"2023-04-05T06:07:08.12Z", NOTHING, "two digits: the zone is empty"},
      {"2023-04-05T06:07:08.1234Z", NOTHING, "four digits: the zone is 4Z"},
      {"2023-04-05T06:07:08.", NOTHING, "nothing behind the point"},
      {"2023-04-05T06:07:08.123", NOTHING, "no zone"},
      {"2023-04-05T06:07:08.5+01:00", (-0.985 + T) - HOUR, "15 thousandths less 1; zone 1:00"},
      {"2023-04-05T06:07:08.12+01:00", (-0.888 + T) - HOUR, "112 less 1000; zone 01:00"},
      {"2023-04-05T06:07:08.+01:00", NOTHING, "zone :00"},
      {"2023-04-05T06:07:08.1234+01:00", (0.123 + T) - 4 * HOUR, "zone 4+01:0: four hours"},
      {"2023-04-05T06:07:08.12345+0100", (0.123 + T) - 45 * HOUR - MINUTE, "zone 45+010"},
      {"2023-04-05T06:07:08.abcZ", -0.999 + T, "no digits: the leading 1 alone"},
      {"2023-04-05T06:07:08.   Z", -0.999 + T, "blanks"},
      {"2023-04-05T06:07:08.-12Z", -0.999 + T, "a sign ends the number"},
      {"2023-04-05T06:07:08.+12Z", -0.999 + T, "the other sign too"},
      {"2023-04-05T06:07:08.1 2Z", -0.989 + T, "11 thousandths less 1"},
      {"2023-04-05T06:07:08.12aZ", -0.888 + T, "two digits, then a letter"},
      {"2023-04-05T06:07:08,123Z", NOTHING, "a comma is no point, and hours of ,12 no number"},
  });
}

TEST(TryParseTime, DateAndTimeAreWhateverStrptimeMakesOfThem) {
  expectRows({
      {"2023-02-31T06:07:08Z", 1677823628.0, "the 31st of February is the 3rd of March"},
      {"1900-02-29T00:00:00Z", -2203891200.0, "no leap day in 1900: the 1st of March"},
      {"2016-12-31T23:59:60Z", 1483228800.0, "second 60"},
      {"2016-12-31T23:59:61Z", 1483228801.0, "second 61"},
      {"2016-12-31T23:59:62Z", NOTHING, "second 62"},
      {"2023-04-05T06:07:99Z", T + 1, "9 seconds: 90 is past the limit, so one digit is read"},
      {"2023-04-05T06:07:70Z", T - 1, "7 seconds, for the same reason"},
      {"2023-04-05T24:00:00Z", NOTHING, "hour 24"},
      {"2023-04-05T30:07:08Z", NOTHING, "hour 3, then no colon"},
      {"2023-04-05T06:60:08Z", NOTHING, "minute 6, then no colon"},
      {"2023-04-00T06:07:08Z", NOTHING, "day 0"},
      {"2023-04-32T06:07:08Z", NOTHING, "day 32"},
      {"2023-04-45T06:07:08Z", NOTHING, "day 4, then no T"},
      {"2023-00-05T06:07:08Z", NOTHING, "month 0"},
      {"2023-13-05T06:07:08Z", NOTHING, "month 13"},
      {"2023-20-05T06:07:08Z", NOTHING, "month 2, then no '-'"},
      {"2023- 4- 5T 6: 7: 8Z", T, "leading blanks are skipped"},
      {"   3-04-05T06:07:08Z", -62064381172.0, "in the year too"},
      {"2023-\t4-\n5T 6: 7:\v8Z", T, "tabs and line ends too"},
      {"2023-04-05T06:07:8 Z", T, "a blank behind the last number"},
      {"2023-04-05T06:07:8xZ", T, "or anything else"},
      {"2023-04-05T06:07:  Z", NOTHING, "blanks only"},
      {"2023-04-05T06:07:+8Z", NOTHING, "signs are no digits"},
      {"2023-04-05T-6:07:08Z", NOTHING, "nor is a '-'"},
      {"+023-04-05T06:07:08Z", NOTHING, "nor in the year"},
      {"2023-4 -05T06:07:08Z", NOTHING, "a blank behind another number"},
      {"202x-04-05T06:07:08Z", NOTHING, "a letter in the year"},
      {"2023-xx-05T06:07:08Z", NOTHING, "letters for a month"},
  });
}

TEST(TryParseTime, MarksBetweenTheNumbersAreChecked) {
  expectRows({
      {nullptr, NOTHING, "no text"},
      {"", NOTHING, "empty"},
      {"yesterday", NOTHING, "too short"},
      {"2023-04-05T06:07:08", NOTHING, "19 characters: no zone"},
      {"2023/04-05T06:07:08Z", NOTHING, "position 4"},
      {"2023-04/05T06:07:08Z", NOTHING, "position 7"},
      {"2023-04-05t06:07:08Z", NOTHING, "position 10, lower case"},
      {"2023-04-05 06:07:08Z", NOTHING, "position 10, blank"},
      {"2023-04-05T06.07:08Z", NOTHING, "position 13"},
      {"2023-04-05T06:07.08Z", NOTHING, "position 16"},
      {" 2023-04-05T06:07:08Z", NOTHING, "shifted by a blank"},
      {"20230405T060708.123Z", NOTHING, "the basic form has no marks"},
      {"2023-04-05T06:07:08\0Z", NOTHING, "the text ends at its NUL"},
  });
}

TEST(TryParseTime, TextBeyondAsciiIsNoDigitAndNoSign) {
  expectRows({
      {"\xef\xbc\x92\xef\xbc\x90-04-05T06:07:08Z", NOTHING, "full-width digits"},
      {"2023-04-05T06:07:08\xe2\x88\x92"
       "05:00",
       NOTHING, "a minus sign of three bytes: hours behind it, minutes cut off"},
      {"2023-04-05T06:07:08\xc3\xa9", NOTHING, "a zone of two bytes"},
      {"2023-04-05T06:07:08Z\xc3\xa9", T, "behind the Z it does not matter"},
      {"2023-04-05T06:07:08.\xc3\xa9"
       "1Z",
       -0.999 + T, "three bytes that are no digits"},
      {"2023-04-05T06:07:8\xc3Z", T, "a byte behind the seconds"},
      {"2023-04-05T06:07:08\xc2\xa0"
       "1:00",
       NOTHING, "a no-break space is no blank"},
  });
}

TEST(TryParseTime, FractionIsAddedBeforeTheOffsetIsTakenOff) {
  // Crossing a power of two, the other order gives the other last bit.
  expectRows({
      {"2004-01-10T14:07:04.001+01:00", 0x1.ffffc7c0020c4p+29, "down across 2^30"},
      {"2004-01-10T14:07:04.002+01:00", 0x1.ffffc7c00418ap+29, "the same, rounded up"},
      {"1987-01-05T19:18:32.004+01:00", 0x1.ffff8f8010624p+28, "down across 2^29"},
  });
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
