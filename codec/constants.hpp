// The words of the notifications and of the host events, as values that can be used as map keys:
// made once when the library is loaded, only read afterwards, so that codecs share them without a
// lock. A name tells its text, with DOT for a full stop.
#ifndef VLT_CODEC_CONSTANTS_HPP
#define VLT_CODEC_CONSTANTS_HPP

#include "codec/constant.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

inline const constant_t DATA_T_("");
inline const constant_t DATA_T_ACKNOWLEDGED("ACKNOWLEDGED");
inline const constant_t DATA_T_ACTIVE("ACTIVE");
inline const constant_t DATA_T_additionParentIds("additionParentIds");
inline const constant_t DATA_T_additionParents("additionParents");
inline const constant_t DATA_T_assetParentIds("assetParentIds");
inline const constant_t DATA_T_assetParents("assetParents");
inline const constant_t DATA_T_o6a_Position("o6a_Position");
inline const constant_t DATA_T_o6a_SupportedMeasurements("o6a_SupportedMeasurements");
inline const constant_t DATA_T_o6a_SupportedOperations("o6a_SupportedOperations");
inline const constant_t DATA_T_childAdditionIds("childAdditionIds");
inline const constant_t DATA_T_childAdditions("childAdditions");
inline const constant_t DATA_T_childAssetIds("childAssetIds");
inline const constant_t DATA_T_childAssets("childAssets");
inline const constant_t DATA_T_childDeviceIds("childDeviceIds");
inline const constant_t DATA_T_childDevices("childDevices");
inline const constant_t DATA_T_CLEARED("CLEARED");
inline const constant_t DATA_T_count("count");
inline const constant_t DATA_T_creationTime("creationTime");
inline const constant_t DATA_T_CRITICAL("CRITICAL");
inline const constant_t DATA_T_deviceId("deviceId");
inline const constant_t DATA_T_deviceParentIds("deviceParentIds");
inline const constant_t DATA_T_deviceParents("deviceParents");
inline const constant_t DATA_T_EXECUTING("EXECUTING");
inline const constant_t DATA_T_FAILED("FAILED");
inline const constant_t DATA_T_firstOccurrenceTime("firstOccurrenceTime");
inline const constant_t DATA_T_id("id");
inline const constant_t DATA_T_lastUpdated("lastUpdated");
inline const constant_t DATA_T_MAJOR("MAJOR");
inline const constant_t DATA_T_measurements("measurements");
inline const constant_t DATA_T_MINOR("MINOR");
inline const constant_t DATA_T_name("name");
inline const constant_t DATA_T_params("params");
inline const constant_t DATA_T_PENDING("PENDING");
inline const constant_t DATA_T_position("position");
inline const constant_t DATA_T_pulsarPath("pulsarPath");
inline const constant_t DATA_T_vltDOTchannel("vlt.channel");
inline const constant_t DATA_T_vltDOTtype("vlt.type");
inline const constant_t DATA_T_severity("severity");
inline const constant_t DATA_T_source("source");
inline const constant_t DATA_T_status("status");
inline const constant_t DATA_T_SUCCESSFUL("SUCCESSFUL");
inline const constant_t DATA_T_supportedMeasurements("supportedMeasurements");
inline const constant_t DATA_T_supportedOperations("supportedOperations");
inline const constant_t DATA_T_tenantId("tenantId");
inline const constant_t DATA_T_text("text");
inline const constant_t DATA_T_time("time");
inline const constant_t DATA_T_towardsHostChannelPrefix("towardsHostChannelPrefix");
inline const constant_t DATA_T_type("type");
inline const constant_t DATA_T_units("units");
inline const constant_t DATA_T_value("value");
inline const constant_t DATA_T_WARNING("WARNING");

// The types of the five host events.
inline const constant_t ALARM_TYPE_DATA_T("com.tivra.ostrovia.Alarm");
inline const constant_t EVENT_TYPE_DATA_T("com.tivra.ostrovia.Event");
inline const constant_t MANAGEDOBJECT_TYPE_DATA_T("com.tivra.ostrovia.ManagedObject");
inline const constant_t MEASUREMENT_TYPE_DATA_T("com.tivra.ostrovia.Measurement");
inline const constant_t OPERATION_TYPE_DATA_T("com.tivra.ostrovia.Operation");

// The same for words that are needed as plain texts only.
inline constexpr char STR_Notifications2Codec[] = "Notifications2Codec";
inline constexpr char STR_measurementSplittingChannel[] = "measurementSplittingChannel";
inline constexpr char STR_ostroviaDOTmeasurements[] = "ostrovia.measurements";
inline constexpr char STR_ostroviaDOTdevices[] = "ostrovia.devices";
inline constexpr char STR_alarms[] = "alarms";
inline constexpr char STR_events[] = "events";
inline constexpr char STR_measurements[] = "measurements";
inline constexpr char STR_managedobjects[] = "managedobjects";
inline constexpr char STR_operations[] = "operations";

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
