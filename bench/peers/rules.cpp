#include "bench/peers/rules.hpp"

#include <cstdlib>
#include <cstring>

#include "bench/settings.hpp"
#include "codec/timestamps.hpp"
#include "host/logging.h"

namespace com::velanto::connectivity::bench::peers {

namespace {

std::string describeKind(const char* asked, const char* actual) {
  if (actual == nullptr) return "Get from empty";
  return std::string("Incorrect type in get (you asked for ") + asked + " but it's actually " +
         actual + ")";
}

} // namespace

void refuseMissing(std::string_view key, const char* where) {
  throw std::runtime_error("Required key '" + std::string(key) + "' missing from " + where);
}

void refuseNoString(const char* key) {
  throw std::runtime_error("Value for key '" + std::string(key) + "' is not a string.");
}

void refuseKind(const char* asked, const char* actual) {
  throw std::runtime_error(describeKind(asked, actual));
}

void refuseKindOf(const char* key, const char* asked, const char* actual) {
  throw std::runtime_error("Problem with key '" + std::string(key) +
                           "': " + describeKind(asked, actual));
}

std::string_view typeSegment(std::string_view path) noexcept {
  for (int slashes = 0; slashes < 2; ++slashes) {
    const std::size_t slash = path.find('/');
    if (slash == std::string_view::npos) return {};
    path.remove_prefix(slash + 1);
  }
  return path;
}

void refuseSegment(std::string_view segment) {
  throw std::runtime_error("Unrecognised Pulsar message type: '" +
                           std::string(segment.substr(0, segment.find('/'))) + "'");
}

std::optional<double> readTime(const char* text) noexcept {
  const auto seconds = plugins::pulsar::tryParseTime(text);
  if (!seconds) return std::nullopt;
  return *seconds;
}

double requireTime(const char* text) {
  if (const auto seconds = readTime(text)) return *seconds;
  throw std::runtime_error("Error parsing timestamp '" + std::string(text) + "' in key 'time'");
}

bool isNumericText(const char* text) noexcept {
  char* end = nullptr;
  std::strtod(text, &end);
  return end != text && std::strpbrk(text, "xX") == nullptr;
}

void reportDropped(const std::optional<std::string>& id, const char* reason) {
  constexpr vlt_log_level_t DROPPED_LEVEL = 3;
  std::string text = "Error when transforming message towards host";
  if (id) text += " ('id' = '" + *id + "')";
  text += ": ";
  text += reason;
  vlt_log_at(LOG_CATEGORY, DROPPED_LEVEL, "<%s> %s", LOG_CATEGORY, text.c_str());
}

} // namespace com::velanto::connectivity::bench::peers
