#include "recorder/ostrovia_notifications_recorder.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "ndjson/json_text.hpp"
#include "plugin/entry_points.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

using recorder::BatchNumber;
using recorder::configuration_t;
using recorder::Direction;
using State = recorder::RecordingBuffer::State;

constexpr std::size_t LONGEST_HEAD = 131072; // a file has room for it and the longest line

// In quotes, as 16 hexadecimal digits.
std::string quotedDigits(std::uint64_t number) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "\"%016llx\"", static_cast<unsigned long long>(number));
  return text.data();
}

// The line before and after the number of the file.
std::pair<std::string, std::string> headLine(const PluginConstructorParameters& params,
                                             const configuration_t& configuration) {
  std::string before = R"({"recording":{"head":{"format":1,"recorder":")" VLT_VERSION "\"";
  before += R"(,"plugin":)";
  appendJsonText(before, params.getPluginName());
  before += R"(,"chain":)";
  appendJsonText(before, params.getChainId());
  before += R"(,"productVersion":")" + std::string(entry_points::PRODUCT_VERSION) + '"';
  before += ",\"run\":" + quotedDigits(recorder::currentRun()) + ",\"file\":";

  std::string after = ",\"started\":" + std::to_string(recorder::timeNow());
  after += ",\"oneIn\":" + std::to_string(configuration.one_in);
  after += ",\"omit\":" + configuration.omit_json;
  after += ",\"configuration\":{" + configuration.json + "}}}}\n";
  if (before.size() + after.size() > LONGEST_HEAD) {
    throw std::runtime_error("Names and settings are too long for a file's head");
  }
  return {std::move(before), std::move(after)};
}

} // namespace

OstroviaNotificationsRecorder::OstroviaNotificationsRecorder(
    const PluginConstructorParameters::CodecConstructorParameters& params)
    : OstroviaNotificationsRecorder(
          params, recorder::readConfiguration(params.getConfiguration(), params.getPluginName(),
                                              params.getChainId())) {}

OstroviaNotificationsRecorder::OstroviaNotificationsRecorder(
    const PluginConstructorParameters::CodecConstructorParameters& params,
    const configuration_t& configuration)
    : AbstractCodec(params),
      ways_(std::hash<std::string>()(params.getChainId()) << 2U | 2U),
      filter_(configuration, recorder::currentRun()),
      buffer_(configuration.omitted, recorder::RecordingFiles::longestLine(configuration)),
      files_(configuration, headLine(params, configuration)),
      writer_(configuration, buffer_, files_, getLogger(), handle1) {
  recorder::watchForks();
  try {
    files_.takeName();
  } catch (const recorder::DiskError&) { // NOLINT(bugprone-empty-catch)
    // The writer thread tries again with the first lines, and reports.
  }
}

void OstroviaNotificationsRecorder::sendBatchTowardsHost(Message* start, Message* end) {
  BatchNumber number(ways_);
  record({start, end}, Direction::HOST, number);
  if (hostSide) hostSide->sendBatchTowardsHost(start, end);
}

void OstroviaNotificationsRecorder::sendBatchTowardsTransport(Message* start, Message* end) {
  BatchNumber number(ways_ + 1);
  record({start, end}, Direction::TRANSPORT, number);
  if (transportSide) transportSide->sendBatchTowardsTransport(start, end);
}

void OstroviaNotificationsRecorder::record(std::span<const Message> messages, Direction direction,
                                           BatchNumber& number) noexcept {
  if (writer_.isCopy()) return;
  const State state = buffer_.state();
  const auto takes_any = [&] {
    if (!filter_.takesDirection(direction)) return false;
    if (filter_.samples() && !filter_.takesBatch(number.get())) return false;
    return std::any_of(messages.begin(), messages.end(),
                       [&](const Message& message) { return filter_.takes(message); });
  };
  if (state == State::OFF || (state == State::ON && !takes_any())) {
    buffer_.skip(messages.size());
  } else {
    buffer_.add({messages, direction, number.get()}, filter_);
  }
}

} // namespace com::velanto::connectivity::plugins::pulsar
