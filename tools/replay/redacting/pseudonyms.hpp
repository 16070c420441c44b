// Stand-ins for texts, made by a keyed hash (BLAKE2b): the same text and key give the same one in
// any place and any run, and nobody without the key can tell the text by trying others.
//
//   text                                       stand-in
//   "", a word that decides a severity or a    the text itself
//   status: MAJOR, ACTIVE, PENDING, …
//   a number, "-12.5"                          15 digits, with the minus
//   begins with a number, "7th"                a digit, then letters and digits without x
//   any other                                  the same after a letter; no number begins with it
//   a path, "t1/sub/alarms/7"                  each segment by itself; the third keeps the word of
//                                              its kind
//   a timestamp                                the same time of day, some days earlier: so many for
//                                              all timestamps of one key
//   bytes in base64                            12 bytes; that are not UTF-8, 15 such bytes
//
// A text that is no number has 16 to 64 characters, as many as its text where it can. A number is
// any text that strtod begins to read and that has no x in it: the codec's own rule, by which
// numeric texts of a position or a measurement differ from others.
#ifndef VLT_TOOLS_REPLAY_REDACTING_PSEUDONYMS_HPP
#define VLT_TOOLS_REPLAY_REDACTING_PSEUDONYMS_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace com::velanto::connectivity::tools {

// The key is in this object alone and wiped with it.
class Pseudonyms {
 public:
  // Takes the key from the bytes of a file, at least MIN_KEY of them, or makes one that nobody knows.
  // Throws ReplayError: EXIT_IO for a file that cannot be read, EXIT_USAGE for one that is too short.
  explicit Pseudonyms(const std::optional<std::string>& key_file);
  Pseudonyms(const Pseudonyms&) = delete;
  Pseudonyms& operator=(const Pseudonyms&) = delete;
  ~Pseudonyms();

  static constexpr std::size_t MIN_KEY = 16; // bytes

  [[nodiscard]] std::string ofText(std::string_view text) const;
  [[nodiscard]] std::string ofPath(std::string_view path) const;
  // An integer or a double, as JSON has it; an integer is that of the text with its digits.
  [[nodiscard]] std::string ofNumber(std::string_view json) const;
  // 64 bits, in hex digits.
  [[nodiscard]] std::string ofBits(std::string_view hex) const;
  // Bytes in base64; `utf8`: the result may be UTF-8.
  [[nodiscard]] std::string ofBytes(std::string_view base64, bool utf8) const;

  // Nothing for a text that has not the form of a timestamp or names no day of a calendar, such as
  // the 13th month. The 31st of February counts as the 3rd of March, as in the codec.
  [[nodiscard]] std::optional<std::string> ofTimestamp(std::string_view text) const;
  // Nanoseconds since the epoch.
  [[nodiscard]] std::int64_t ofTime(std::int64_t nanoseconds) const noexcept;

 private:
  static constexpr std::size_t KEY = 32;  // bytes
  static constexpr std::size_t HASH = 64; // bytes
  using hash_t = std::array<unsigned char, HASH>;

  [[nodiscard]] hash_t hashOf(std::string_view text) const noexcept;
  [[nodiscard]] std::string digitsFor(std::string_view text) const;

  std::array<unsigned char, KEY> key_{};
  std::int64_t days_ = 0; // from every timestamp to its stand-in
};

} // namespace com::velanto::connectivity::tools

#endif
