// The rules of fields that do not depend on the tree: accepted kinds and words, and the messages
// for all others. The program exports them for the peer that is a library.
#ifndef VLT_BENCH_PEERS_RULES_HPP
#define VLT_BENCH_PEERS_RULES_HPP

#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace com::velanto::connectivity::bench::peers {

#pragma GCC visibility push(default)

inline constexpr const char* IN_PAYLOAD = "message payload";
inline constexpr const char* IN_SOURCE = "source";

inline constexpr std::array<std::string_view, 4> SEVERITIES = {"CRITICAL", "MAJOR", "MINOR",
                                                               "WARNING"};
inline constexpr std::array<std::string_view, 3> ALARM_STATES = {"ACTIVE", "ACKNOWLEDGED",
                                                                 "CLEARED"};
inline constexpr std::array<std::string_view, 4> OPERATION_STATES = {"SUCCESSFUL", "FAILED",
                                                                     "EXECUTING", "PENDING"};

[[noreturn]] void refuseMissing(std::string_view key, const char* where);
[[noreturn]] void refuseNoString(const char* key);
// `actual` is the host's name for the kind, null for no value at all.
[[noreturn]] void refuseKind(const char* asked, const char* actual);
// The same for a field, with its key.
[[noreturn]] void refuseKindOf(const char* key, const char* asked, const char* actual);

// Throws std::runtime_error "Unrecognized WHAT: TEXT" unless `text` is one of `texts`.
template <class Texts>
void requireOneOf(const Texts& texts, std::string_view text, const char* what) {
  for (const std::string_view known : texts) {
    if (known == text) return;
  }
  throw std::runtime_error(std::string("Unrecognized ") + what + ": " + std::string(text));
}

// The part of a path after its second '/'; empty when there are fewer.
[[nodiscard]] std::string_view typeSegment(std::string_view path) noexcept;
[[noreturn]] void refuseSegment(std::string_view segment);

// Seconds since the epoch, if `text` is a time.
[[nodiscard]] std::optional<double> readTime(const char* text) noexcept;
// The same for "time", which must be readable.
[[nodiscard]] double requireTime(const char* text);

// Whether `text` counts as a number.
[[nodiscard]] bool isNumericText(const char* text) noexcept;

// The line that a dropped notification leaves in the log; `id` is empty when it had no textual one.
void reportDropped(const std::optional<std::string>& id, const char* reason);

#pragma GCC visibility pop

} // namespace com::velanto::connectivity::bench::peers

#endif
