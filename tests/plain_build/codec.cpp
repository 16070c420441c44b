#include "tests/plain_build/codec.hpp"

#include <cstdio>
#include <new>
#include <stdexcept>
#include <utility>

#include "host/logging.h"
#include "host/storage.h"
#include "tests/plain_build/conversions.hpp"
#include "tests/plain_build/table.hpp"

namespace plain_build {
namespace {

constexpr vlt_log_level_t DROPS_LEVEL = 3;
constexpr vlt_log_level_t TRACE_LEVEL = 6;

std::string rendered(const RawValue& value) {
  const Value text(vlt_data_to_string(&value));
  if (text.raw().value.string == nullptr) throw std::bad_alloc();
  return text.raw().value.string;
}

// The setting `key`, which must be there with a string.
const RawValue& requiredText(RawTable* settings, const char* key) {
  const Slot* const slot = findSlot(settings, key);
  const char* fault = nullptr;
  if (slot == nullptr) {
    fault = "' not found in ";
  } else if (slot->value.tag == VLT_TAG_EMPTY) {
    fault = "' has an empty value in ";
  } else {
    requireKind(slot->value, VLT_TAG_STRING);
    return slot->value;
  }
  const Value name = Value::ofText(key);
  throw std::runtime_error("Key '" + rendered(name.raw()) + fault + "Notifications2Codec");
}

// Any fault of its kind leads to the default; a null string is one of the host.
std::string measurementChannel(RawTable* settings) {
  const Slot* const slot = findSlot(settings, "measurementSplittingChannel");
  if (slot == nullptr) return "ostrovia.measurements";
  try {
    requireKind(slot->value, VLT_TAG_STRING);
  } catch (const std::runtime_error&) {
    return "ostrovia.measurements";
  }
  if (slot->value.value.string == nullptr) throw std::runtime_error(NULL_TEXT);
  return slot->value.value.string;
}

std::string channelPrefix(RawTable* settings) {
  const Slot* const slot = findSlot(settings, "towardsHostChannelPrefix");
  if (slot == nullptr) return "";
  const RawValue& prefix = slot->value;
  if (isString(prefix)) return textOf(prefix);
  char text[50] = "";
  if (prefix.tag == VLT_TAG_BOOLEAN) return byteOf(prefix) != 0 ? "true" : "false";
  if (prefix.tag == VLT_TAG_INTEGER) return std::to_string(prefix.value.integer);
  if (prefix.tag == VLT_TAG_DOUBLE) std::snprintf(text, sizeof text, "%g", prefix.value.real);
  return text;
}

// The kind of a notification: the part of its path after the second slash, up to the third.
std::string segmentOf(const RawValue& path) {
  requireKind(path, VLT_TAG_STRING);
  const std::string text = textOf(path);
  const size_t first = text.find('/');
  const size_t second = first == std::string::npos ? first : text.find('/', first + 1);
  if (second == std::string::npos) return "";
  return text.substr(second + 1, text.find('/', second + 1) - (second + 1));
}

// The id of a notification if it is a string, or null.
const RawValue* idOf(const RawValue& payload) {
  if (payload.tag != VLT_TAG_MAP) return nullptr;
  const Slot* const id = findSlot(payload.value.map, "id");
  return id != nullptr && isString(id->value) ? &id->value : nullptr;
}

// What a notification leaves behind when its conversion fails: a map with its id, or nothing.
Value idOnly(const RawValue& payload) {
  const RawValue* const id = idOf(payload);
  if (id == nullptr) return {};
  Value copy(vlt_copy_data(id));
  if (copy.raw().tag == VLT_TAG_EMPTY) throw std::bad_alloc();
  Table table;
  table.set("id", std::move(copy));
  return table.toValue();
}

std::string oneLine(const std::string& text) {
  std::string line;
  for (const char c : text) {
    if (c == '\n') {
      line += "\\n";
    } else if (c == '\r') {
      line += "\\r";
    } else {
      line += c;
    }
  }
  return line;
}

} // namespace

Log::Log(const std::string& category)
    : category_(category), level_(vlt_get_log_level(category.c_str())) {}

void Log::write(vlt_log_level_t level, const std::string& text) const noexcept {
  if (shows(level))
    vlt_log_at(category_.c_str(), level, "<%s> %s", category_.c_str(), text.c_str());
}

Settings settingsOf(const RawValue& configuration) {
  requireKind(configuration, VLT_TAG_MAP);
  const Value copy(vlt_copy_data(&configuration)); // owns its keys, so lookups find them
  if (copy.raw().tag != VLT_TAG_MAP) throw std::bad_alloc();
  RawTable* const settings = copy.raw().value.map;
  return {measurementChannel(settings), channelPrefix(settings) + "ostrovia.devices",
          textOf(requiredText(settings, "tenantId"))};
}

Codec::Codec(Log log, Settings settings) : log_(std::move(log)), settings_(std::move(settings)) {}

void Codec::setNextTowardsHost(const Link& link) {
  if (link.function == nullptr)
    throw std::runtime_error("Cannot use a null batch function as a link");
  host_link_ = link;
}

void Codec::setNextTowardsTransport(const Link& link) {
  if (link.function == nullptr)
    throw std::runtime_error("Cannot use a null batch function as a link");
  transport_link_ = link;
}

void Codec::sendBatchTowardsHost(Message* start, Message* end) const {
  Message* out = start;
  for (Message* message = start; message != end; ++message) {
    if (message->payload.tag != VLT_TAG_EMPTY && !converted(*message)) continue;
    if (message != out) std::swap(*message, *out);
    ++out;
  }
  host_link_.send(start, out);
}

void Codec::sendBatchTowardsTransport(Message* start, Message* end) const {
  transport_link_.send(start, end);
}

// Whether the message is to be kept; reports it otherwise, unless memory is short for that, too.
bool Codec::converted(Message& message) const noexcept try {
  try {
    convertMessage(message);
    return true;
  } catch (const std::exception& error) {
    const RawValue* const id = idOf(message.payload);
    std::string text = "Error when transforming message towards host";
    if (id != nullptr) text += std::string(" ('id' = '") + textOf(*id) + "')";
    log_.write(DROPS_LEVEL, text + ": " + error.what());
  }
  return false;
} catch (...) {
  return false;
}

// Leaves a message that fails as it came, or, once its contents were taken, with its id alone.
void Codec::convertMessage(Message& message) const {
  const Slot* const path = findSlot(message.metadata, "pulsarPath");
  if (path == nullptr) return;
  if (log_.shows(TRACE_LEVEL)) trace(message);
  requireKind(message.payload, VLT_TAG_MAP);
  Value id_only = idOnly(message.payload);
  Table payload(message.payload.value.map);
  const Table metadata(message.metadata);
  message = {id_only.release(), nullptr};

  const std::string segment = segmentOf(path->value);
  Event event = convert(segment, payload);
  const bool is_measurement = segment.starts_with("measurements");
  Table event_metadata;
  event_metadata.set("vlt.type", Value::ofText(event.type));
  event_metadata.set("vlt.channel",
                     Value::ofText(is_measurement ? settings_.measurement_channel.c_str()
                                                  : settings_.devices_channel.c_str()));
  if (!settings_.tenant.empty()) {
    event.fields.set("tenantId", Value::ofText(settings_.tenant.c_str()));
  }
  event.fields.add(Value::ofText("measurements"), event.measurements.toValue());
  const Value replaced(message.payload);
  message = {event.fields.toValue().release(), event_metadata.release()};
}

void Codec::trace(const Message& message) const {
  constexpr size_t LIMIT = 200;
  std::string payload = rendered(message.payload);
  if (payload.size() > LIMIT) payload = payload.substr(0, LIMIT - 4) + " ...";
  const std::string metadata = rendered({{.map = message.metadata}, VLT_TAG_MAP});
  log_.write(TRACE_LEVEL, "Processing message: Message<metadata=" + metadata +
                              ", payload=" + oneLine(payload) + ">");
}

} // namespace plain_build
