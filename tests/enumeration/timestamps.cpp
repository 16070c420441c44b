// Every timestamp of some spaces: the codec's reading equals the reading by strptime, timegm and
// std::stoi, bit for bit. No reading goes beyond the NUL, since memory ends there.
//
//   dates        any eight digits of a date; any eight of nine characters, blanks and signs among them
//   times        the same of a time, after and before 1970
//   fractions    any three bytes after the point
//   thousandths  any of an hour: next to 1970, where sums have most digits, and at the last hour
//   zones        any digits of the usual forms; any six characters that the rules tell apart
//   damage       each byte at each place of each usual form: instead, in between, or missing
//   twofold      each two bytes at each two places of two usual forms
//
// A NUL among the bytes cuts the text.
#include "codec/timestamps.hpp"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/codec/time_reference.hpp"
#include "tests/enumeration/enumeration.hpp"

namespace com::velanto::connectivity::enumeration {
namespace {

using plugins::pulsar::tryParseTime;
using places_t = std::vector<std::size_t>;

constexpr std::string_view DIGITS = "0123456789";
// Of the digits, some at each end of a range.
constexpr std::string_view DATE_CHARACTERS = "01239 +-x";
constexpr std::string_view TIME_CHARACTERS = "012569 +-x";
// One of each sort that the rules tell apart, and some more digits.
constexpr std::string_view ZONE_CHARACTERS("012359 +-:Zzx\0", 14);

const std::string& allBytes() {
  static const std::string ALL = [] {
    std::string bytes;
    for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
    return bytes;
  }();
  return ALL;
}

// A text whose NUL is the last byte before memory that nobody may read.
class LastBytes {
 public:
  LastBytes() {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* const pages =
        mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) throw std::bad_alloc();
    end_ = static_cast<char*>(pages) + page;
    if (mprotect(end_, page, PROT_NONE) != 0) throw std::bad_alloc();
  }

  // Valid until the next call. The text ends at its first NUL.
  const char* hold(const std::string& text) {
    const std::size_t length = std::strlen(text.c_str());
    return static_cast<const char*>(std::memcpy(end_ - length - 1, text.c_str(), length + 1));
  }

 private:
  char* end_; // the pages stay until the process ends
};

// Reads timestamps in both ways and counts them.
class Readings {
 public:
  explicit Readings(Share& share) : share_(share) {}

  // Prints the counts since the last call.
  void print(const char* space) {
    std::cout << space << ": " << std::exchange(read_, 0) << " timestamps, "
              << std::exchange(accepted_, 0) << " of them accepted" << std::endl;
  }

  void one(const std::string& text) {
    if (share_.hasNext()) compare(text);
  }

  // `text` with any of `characters` at each of the places.
  void any(std::string text, const places_t& places, std::string_view characters) {
    std::uint64_t count = 1;
    for (std::size_t i = 0; i < places.size(); ++i) count *= characters.size();
    share_.eachOf(count, [&](std::uint64_t number) {
      for (const std::size_t place : places) {
        text[place] = characters[number % characters.size()];
        number /= characters.size();
      }
      compare(text);
    });
  }

 private:
  void compare(const std::string& text) {
    const char* const held = memory_.hold(text);
    const auto actual = tryParseTime(held);
    const auto expected = test::referenceTime(held);
    if (actual.has_value() != expected.has_value() ||
        test::bitsOf(actual) != test::bitsOf(expected)) {
      throw std::runtime_error("'" + std::string(held) + "' reads as " + described(actual) +
                               " instead of " + described(expected));
    }
    ++read_;
    if (actual) ++accepted_;
  }

  static std::string described(const boost::optional<double>& seconds) {
    return seconds ? std::to_string(*seconds) + " (" + std::to_string(test::bitsOf(seconds)) + ")"
                   : "nothing";
  }

  Share& share_;
  LastBytes memory_;
  std::uint64_t read_ = 0;
  std::uint64_t accepted_ = 0;
};

const places_t DATE = {0, 1, 2, 3, 5, 6, 8, 9};
const places_t TIME = {11, 12, 14, 15, 17, 18};

void readDatesAndTimes(Readings& readings) {
  const std::string date = "0000-00-00T12:34:56.789-05:30";
  readings.any(date, DATE, DIGITS);
  readings.print("dates");
  readings.any(date, DATE, DATE_CHARACTERS);
  readings.print("dates with blanks and signs");
  for (const char* const time : {"2024-02-29T00:00:00.250Z", "0000-12-31T00:00:00+01:00"}) {
    readings.any(time, TIME, DIGITS);
    readings.any(time, TIME, TIME_CHARACTERS);
  }
  readings.print("times, also with blanks and signs");
}

void readFractions(Readings& readings) {
  readings.any("2023-04-05T06:07:08.000+01:00", {20, 21, 22}, allBytes());
  readings.print("fractions");
  const places_t within_an_hour = {14, 15, 17, 18, 20, 21, 22};
  for (const char* const hour : {"1970-01-01T00:00:00.000+00:01", "9999-12-31T23:00:00.000Z"}) {
    readings.any(hour, within_an_hour, DIGITS);
  }
  readings.print("thousandths of an hour");
}

void readZones(Readings& readings) {
  constexpr const char* BEFORE[] = {"2023-04-05T06:07:08", "1969-12-31T23:59:59.001"};
  for (const std::string before : BEFORE) {
    const std::size_t at = before.size();
    for (const char* const sign : {"+", "-"}) {
      readings.any(before + sign + "00:00", {at + 1, at + 2, at + 4, at + 5}, DIGITS);
      readings.any(before + sign + "0000", {at + 1, at + 2, at + 3, at + 4}, DIGITS);
    }
    readings.any(before + "??????", {at, at + 1, at + 2, at + 3, at + 4, at + 5}, ZONE_CHARACTERS);
  }
  readings.print("zones");
}

constexpr std::array USUAL_FORMS = {
    "2023-04-05T06:07:08Z",      "2023-04-05T06:07:08.123Z",      "2023-04-05T06:07:08+01:00",
    "2024-02-29T23:59:60+0530",  "1969-12-31T23:59:59.250-05:30", "0000-01-01T00:00:00.000-0530",
    "9999-12-31T23:59:61-23:59",
};

void readDamaged(Readings& readings) {
  for (const std::string form : USUAL_FORMS) {
    readings.one(form);
    for (std::size_t place = 0; place <= form.size(); ++place) {
      readings.any(std::string(form).insert(place, "?"), {place}, allBytes());
      if (place == form.size()) break;
      readings.any(form, {place}, allBytes());
      readings.one(std::string(form).erase(place, 1));
    }
  }
  readings.print("damage");
  for (const std::string form : {USUAL_FORMS[0], USUAL_FORMS[4]}) {
    for (std::size_t second = 1; second < form.size(); ++second) {
      for (std::size_t first = 0; first < second; ++first) {
        readings.any(form, {first, second}, allBytes());
      }
    }
  }
  readings.print("twofold damage");
}

} // namespace
} // namespace com::velanto::connectivity::enumeration

int main(int argc, char** argv) {
  namespace enumeration = com::velanto::connectivity::enumeration;
  return enumeration::enumerate(argc, argv, [](enumeration::Share& share) {
    enumeration::Readings readings(share);
    enumeration::readDatesAndTimes(readings);
    enumeration::readFractions(readings);
    enumeration::readZones(readings);
    enumeration::readDamaged(readings);
  });
}
