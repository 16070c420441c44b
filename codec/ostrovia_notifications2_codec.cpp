#include "codec/ostrovia_notifications2_codec.hpp"

#include <cxxabi.h>

#include <stdexcept>
#include <string>

#include "codec/constants.hpp"
#include "codec/dispatch.hpp"
#include "codec/id_for_report.hpp"
#include "codec/pulsar_message_disassembler.hpp"
#include "plugin/map_extractor.hpp"
#include "value/get_visitor.hpp"
#include "value/to_string.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

constexpr vlt_log_level_t DROPPED_LEVEL = 3;
constexpr vlt_log_level_t TRACE_LEVEL = 6;

// The configured text, which may be null, or the default when the setting is absent or no text.
const char* readMeasurementChannel(const MapExtractor& settings) {
  const data_t key(STR_measurementSplittingChannel); // no memory for it is no reason for a default
  try {
    return settings.doGet(key).get<const char*>();
  } catch (const std::exception&) {
    return STR_ostroviaDOTmeasurements;
  }
}

// The entry of the notification's "id" if that is a string, otherwise null.
const map_entry_t* findStringId(const map_t& payload) {
  const map_entry_t* const id = payload.find_entry(DATA_T_id);
  return id != nullptr && id->value.is_string() ? id : nullptr;
}

// `what` is null for an exception without a text.
std::string describeFailure(const Message& message, bool towardsTransport, const char* what) {
  std::string text = "Error when transforming message towards ";
  text += towardsTransport ? "transport" : "host";
  const data_t& payload = message.getPayload();
  // The kind before the content: a typed get of another kind would write to standard error.
  if (payload.type_tag() == VLT_TAG_MAP) {
    if (const map_entry_t* const id = findStringId(payload.get<map_t>())) {
      text += " ('id' = '" + std::string(text_or_empty(id->value.get<const char*>())) + "')";
    }
  }
  if (what != nullptr) {
    text += ": ";
    text += what;
  }
  return text;
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

Message OstroviaNotifications2Codec::processPulsarMessage(Message&& notification,
                                                          const found_t& found, data_t&& channelKey,
                                                          Fault& fault) const {
  if (notification.getPayload().type_tag() != VLT_TAG_MAP) {
    throw std::runtime_error("Message payload is not a map");
  }
  PulsarMessageDisassembler disassembler(std::move(notification), found.id);
  const char* const typeSegment = PulsarMessageDisassembler::getStartCharOfMessageType(found.path);
  const bool is_measurement = isOfKind(typeSegment, STR_measurements);
  std::unique_ptr<TivraMessageBuilder> builder =
      tryConvertPulsarToTivraMessage(disassembler, typeSegment);
  if (builder == nullptr) {
    fault = disassembler.getFault();
    return {};
  }

  builder->addToMetadata(DATA_T_vltDOTchannel.hash(), std::move(channelKey),
                         data_t(is_measurement ? measurementSplittingChannel : devicesChannel));
  if (tenantId) builder->fields.assign(DATA_T_tenantId.with(data_t(*tenantId)));
  return TivraMessageBuilder::getResult(std::move(builder));
}

bool OstroviaNotifications2Codec::transformMessageTowardsHost(Message& message) {
  const data_t* const path = message.getMetadataMap().find_value(DATA_T_pulsarPath);
  if (path == nullptr) return true;

  if (getLogger().enabled(TRACE_LEVEL)) {
    const std::string text = "Processing message: " + to_string(message, true);
    getLogger().log<TRACE_LEVEL>("%s", text.c_str());
  }

  Fault fault;
  if (replaceByEvent(message, *path, fault)) return true;
  reportDropped(message, false, fault.what());
  return false;
}

bool OstroviaNotifications2Codec::replaceByEvent(Message& message, const data_t& path,
                                                 Fault& fault) const {
  const data_t& payload = message.getPayload();
  const auto* const fields = payload.get_if<map_t>();
  if (fields == nullptr) {
    fault.note(payload.get_error<map_t>());
    return false;
  }
  const found_t found{path, findStringId(*fields)};
  // Made while the message is whole: when there is no memory at all, it stays so for its report.
  data_t channelKey = DATA_T_vltDOTchannel.copy();
  IdForReport idForReport(found.id == nullptr ? nullptr : &found.id->value, message);
  Message notification(std::move(message));
  message = processPulsarMessage(std::move(notification), found, std::move(channelKey), fault);
  if (fault) return false;
  idForReport.converted();
  return true;
}

bool OstroviaNotifications2Codec::transformMessageTowardsTransport(Message&) { return true; }

bool OstroviaNotifications2Codec::handleException(Message& message, bool towardsTransport) {
  // Not std::current_exception: it would ask for the C++ library of g++ 11, and count references.
  if (abi::__cxa_current_exception_type() == nullptr) return false;
  try {
    throw;
  } catch (const std::exception& e) {
    reportDropped(message, towardsTransport, e.what());
  } catch (...) {
    reportDropped(message, towardsTransport, nullptr);
  }
  return false;
}

void OstroviaNotifications2Codec::reportDropped(const Message& message, bool towardsTransport,
                                                const char* what) const noexcept {
  if (!getLogger().enabled(DROPPED_LEVEL)) return;
  try {
    getLogger().log<DROPPED_LEVEL>("%s", describeFailure(message, towardsTransport, what).c_str());
  } catch (...) { // NOLINT(bugprone-empty-catch): no memory for the report; it is lost
  }
}

} // namespace com::velanto::connectivity::plugins::pulsar
