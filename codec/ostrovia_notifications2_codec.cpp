#include "codec/ostrovia_notifications2_codec.hpp"

#include <cxxabi.h>

#include <cstdio>
#include <exception>
#include <memory>
#include <new>
#include <string>

#include "plugin/map_extractor.hpp"
#include "plugin/probes.hpp"
#include "value/get_visitor.hpp"
#include "value/to_string.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

constexpr vlt_log_level_t DROPPED_LEVEL = 3;
constexpr vlt_log_level_t TRACE_LEVEL = 6;

// The configured string, which may be null, or the default when the setting is absent or no string.
const char* readMeasurementChannel(const MapExtractor& settings) {
  const data_t key(STR_measurementSplittingChannel); // not caught: without memory, no codec
  try {
    return settings.doGet(key).get<const char*>();
  } catch (const std::exception&) {
    return STR_ostroviaDOTmeasurements;
  }
}

// The string "id" of the notification, or null when it has none of a string kind.
const char* idOf(const map_t& payload) {
  const data_t* const id = payload.find_value(DATA_T_id);
  return id != nullptr && id->is_string() ? text_or_empty(id->get<const char*>()) : nullptr;
}

} // namespace

OstroviaNotifications2Codec::OstroviaNotifications2Codec(
    const PluginConstructorParameters::CodecConstructorParameters& params)
    : AbstractSimpleCodec(params) {
  const MapExtractor settings(params.getConfiguration(), STR_Notifications2Codec);

  measurementSplittingChannel = data_t(readMeasurementChannel(settings));

  const auto prefix = settings.get<std::string>(DATA_T_towardsHostChannelPrefix, "");
  devicesChannel = data_t((prefix + STR_ostroviaDOTdevices).c_str());

  const char* const tenant = text_or_empty(settings.doGet(DATA_T_tenantId).get<const char*>());
  if (*tenant != '\0') tenantId = data_t(tenant);
}

bool OstroviaNotifications2Codec::transformMessageTowardsHost(Message& message) {
  if (message.getMetadataMap().find_value(DATA_T_pulsarPath) == nullptr) return true;

  if (getLogger().enabled(TRACE_LEVEL)) {
    const std::string text = "Processing message: " + to_string(message, true);
    getLogger().log<TRACE_LEVEL>("%s", text.c_str());
  }

  const data_t& payload = message.getPayload();
  const auto* const fields = payload.get_if<map_t>();
  if (fields == nullptr) {
    const auto mismatch = payload.report_mismatch<map_t>();
    probes::dropped(mismatch.what(), nullptr);
    reportDropped(nullptr, false, mismatch.what());
    return false;
  }

  // Copied now: converting consumes the id, and the report needs it without a block of the host.
  std::string id_text;
  const char* id = idOf(*fields);
  if (id != nullptr) id = (id_text = id).c_str();

  PulsarMessageDisassembler notification(std::move(message));
  try {
    message = processPulsarMessage(notification);
    if (!notification.getFault()) return true;
    probes::dropped(notification.getFault().what(), id);
    reportDropped(id, false, notification.getFault().what());
  } catch (...) {
    reportExceptionInFlight(id, false);
  }
  message.getPayload() = notification.reduceToId(id);
  return false;
}

Message OstroviaNotifications2Codec::processPulsarMessage(
    PulsarMessageDisassembler& notification) const {
  auto [builder, channel] = convertPulsarToTivraMessage(notification);
  if (builder == nullptr) return {};
  const bool splits = channel == Channel::MEASUREMENTS;
  builder->insertIntoMetadata(DATA_T_vltDOTchannel,
                              data_t(splits ? measurementSplittingChannel : devicesChannel));
  if (tenantId) builder->fields.assign(DATA_T_tenantId.with(data_t(*tenantId)));
  return TivraMessageBuilder::getResult(std::move(builder));
}

bool OstroviaNotifications2Codec::transformMessageTowardsTransport(Message&) { return true; }

bool OstroviaNotifications2Codec::handleException(Message& message, bool towards_transport) {
  // Without an exception in flight, `throw;` would end the process. Not std::current_exception: it
  // would ask for the C++ library of g++ 11, and count references.
  if (abi::__cxa_current_exception_type() == nullptr) return false;
  const auto* const fields = message.getPayload().get_if<map_t>();
  reportExceptionInFlight(fields == nullptr ? nullptr : idOf(*fields), towards_transport);
  return false;
}

void OstroviaNotifications2Codec::reportExceptionInFlight(const char* id,
                                                          bool towards_transport) const noexcept {
  try {
    throw;
  } catch (const std::exception& e) {
    probes::dropped(e.what(), id);
    reportDropped(id, towards_transport, e.what());
  } catch (...) {
    probes::dropped(nullptr, id);
    reportDropped(id, towards_transport, nullptr);
  }
}

void OstroviaNotifications2Codec::reportDropped(const char* id, bool towards_transport,
                                                const char* what) const noexcept {
  if (!getLogger().enabled(DROPPED_LEVEL)) return;
  const auto describe = [=](char* text, std::size_t size) noexcept {
    const int length =
        std::snprintf(text, size, "Error when transforming message towards %s%s%s%s%s%s",
                      towards_transport ? "transport" : "host", id == nullptr ? "" : " ('id' = '",
                      text_or_empty(id), id == nullptr ? "" : "')", what == nullptr ? "" : ": ",
                      text_or_empty(what));
    return static_cast<std::size_t>(length) + 1;
  };
  char usual[512];
  const std::size_t size = describe(usual, sizeof usual);
  std::unique_ptr<char[]> longer;
  if (size > sizeof usual) longer.reset(new (std::nothrow) char[size]);
  if (longer) describe(longer.get(), size);
  getLogger().log<DROPPED_LEVEL>("%s", longer ? longer.get() : usual);
}

} // namespace com::velanto::connectivity::plugins::pulsar
