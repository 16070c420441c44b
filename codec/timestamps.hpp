// Reads the platform's ISO 8601 timestamps.
//
//   2023-04-05T06:07:08.123+01:00
//       ^  ^  ^  ^  ^  ^   ^
//       4  7  10 13 16 19  23
//
// 19 characters of date and time, then the zone; with a fraction, '.' is at 19 and the zone at 23.
// The zone is at most six characters long; the reader ignores all characters after it.
//
//   zone      offset     accepted as
//   Z z       0          the letter, without a ':' after it
//   +01:00    as read    hours before the ':', minutes after it
//   -0530     as read    three characters of hours, two of minutes
//   :         0          both parts empty
//   +01       refused    hours without minutes
//
// Oddities that the reader keeps on purpose, since hosts rely on equal results:
// - a fraction always counts as thousandths and always takes up four characters: ".5" followed by a
//   zone reads as -0.985, and the zone begins after it;
// - a '-' anywhere in the zone makes the minutes negative;
// - date and time go through strptime, offset numbers through std::stoi: these decide about leading
//   blanks, signs and trailing characters, and the 31st of February is the 3rd of March.
#ifndef VLT_CODEC_TIMESTAMPS_HPP
#define VLT_CODEC_TIMESTAMPS_HPP

#include <boost/optional.hpp>

namespace com::velanto::connectivity::plugins::pulsar {

// Seconds since 1970-01-01T00:00:00Z, with a fraction of milliseconds; empty when `text` is null or
// is no timestamp with a zone. Never throws.
[[nodiscard]] boost::optional<double> tryParseTime(const char* text) noexcept;

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
