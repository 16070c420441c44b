// Memory of a fixed size that fills up with JSON, without an allocation, a host call or an
// exception. It copies strings in runs of 16 bytes:
//
//   (1) load up to 16 bytes, never one beyond the string
//   (2) store them all, and find the first byte that JSON or UTF-8 asks to look at
//   (3) go on after it: escaped, or a character of several bytes, checked
//
// Storing 16 bytes is always safe, since the memory's last 16 bytes count as full.
#ifndef VLT_NDJSON_JSON_MEMORY_HPP
#define VLT_NDJSON_JSON_MEMORY_HPP

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace com::velanto::connectivity {

class JsonMemory {
 public:
  static constexpr std::size_t SLACK = 16; // bytes at the end that stay unused

  JsonMemory() noexcept = default; // full
  // From `begin` up to `end`.
  JsonMemory(char* begin, const char* end) noexcept : at_(begin), limit_(begin) {
    const auto size = static_cast<std::size_t>(end - begin);
    full_ = size < SLACK;
    if (!full_) limit_ = begin + (size - SLACK);
  }

  // Whether something did not fit. Nothing is written from then on.
  [[nodiscard]] bool isFull() const noexcept { return full_; }
  // The end of the JSON so far.
  [[nodiscard]] char* position() const noexcept { return at_; }
  // The last byte so far; there must be one.
  [[nodiscard]] char last() const noexcept { return at_[-1]; }

  void put(char c) noexcept {
    if (hasRoom(1)) *at_++ = c;
  }
  // JSON as it is.
  void raw(std::string_view json) noexcept {
    if (!hasRoom(json.size())) return;
    std::memcpy(at_, json.data(), json.size());
    at_ += json.size();
  }

  void integer(std::int64_t content) noexcept;
  // A number with at most 3 decimals and 15 digits, as most times and readings are, in the shortest
  // form. False, and nothing is written, for any other one.
  [[nodiscard]] bool shortReal(double content) noexcept;
  // A finite number, with a fraction or an exponent, in at most 17 digits that read back as the
  // same bits.
  void real(double content) noexcept;
  // In quotes: 16 hexadecimal digits, the highest first.
  void bits(std::uint64_t content) noexcept;
  // In quotes, with padding.
  void base64(const unsigned char* bytes, std::size_t size) noexcept;
  // In quotes, escaped. False, and nothing is written, when `text` is not UTF-8.
  [[nodiscard]] bool text(std::string_view text) noexcept;

 private:
  // Whether `size` more bytes fit.
  bool hasRoom(std::size_t size) noexcept {
    full_ = full_ || static_cast<std::size_t>(limit_ - at_) < size;
    return !full_;
  }
  void escape(char c) noexcept;

  char* at_ = nullptr;
  const char* limit_ = nullptr;
  bool full_ = true;
};

} // namespace com::velanto::connectivity

#endif
