// The words of the notifications and of the host events, as values that can be used as map keys:
// made once when the library is loaded, only read afterwards, so that codecs share them without a
// lock. A name tells its text, with DOT for a full stop.
#ifndef VLT_CODEC_CONSTANTS_HPP
#define VLT_CODEC_CONSTANTS_HPP

#include "codec/constant.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

inline const constant_t& DATA_T_ = lasting<"">.constant;
inline const constant_t& DATA_T_ACKNOWLEDGED = lasting<"ACKNOWLEDGED">.constant;
inline const constant_t& DATA_T_ACTIVE = lasting<"ACTIVE">.constant;
inline const constant_t& DATA_T_additionParentIds = lasting<"additionParentIds">.constant;
inline const constant_t& DATA_T_additionParents = lasting<"additionParents">.constant;
inline const constant_t& DATA_T_assetParentIds = lasting<"assetParentIds">.constant;
inline const constant_t& DATA_T_assetParents = lasting<"assetParents">.constant;
inline const constant_t& DATA_T_o6a_Position = lasting<"o6a_Position">.constant;
inline const constant_t& DATA_T_o6a_SupportedMeasurements =
    lasting<"o6a_SupportedMeasurements">.constant;
inline const constant_t& DATA_T_o6a_SupportedOperations =
    lasting<"o6a_SupportedOperations">.constant;
inline const constant_t& DATA_T_childAdditionIds = lasting<"childAdditionIds">.constant;
inline const constant_t& DATA_T_childAdditions = lasting<"childAdditions">.constant;
inline const constant_t& DATA_T_childAssetIds = lasting<"childAssetIds">.constant;
inline const constant_t& DATA_T_childAssets = lasting<"childAssets">.constant;
inline const constant_t& DATA_T_childDeviceIds = lasting<"childDeviceIds">.constant;
inline const constant_t& DATA_T_childDevices = lasting<"childDevices">.constant;
inline const constant_t& DATA_T_CLEARED = lasting<"CLEARED">.constant;
inline const constant_t& DATA_T_count = lasting<"count">.constant;
inline const constant_t& DATA_T_creationTime = lasting<"creationTime">.constant;
inline const constant_t& DATA_T_CRITICAL = lasting<"CRITICAL">.constant;
inline const constant_t& DATA_T_deviceId = lasting<"deviceId">.constant;
inline const constant_t& DATA_T_deviceParentIds = lasting<"deviceParentIds">.constant;
inline const constant_t& DATA_T_deviceParents = lasting<"deviceParents">.constant;
inline const constant_t& DATA_T_EXECUTING = lasting<"EXECUTING">.constant;
inline const constant_t& DATA_T_FAILED = lasting<"FAILED">.constant;
inline const constant_t& DATA_T_firstOccurrenceTime = lasting<"firstOccurrenceTime">.constant;
inline const constant_t& DATA_T_id = lasting<"id">.constant;
inline const constant_t& DATA_T_lastUpdated = lasting<"lastUpdated">.constant;
inline const constant_t& DATA_T_MAJOR = lasting<"MAJOR">.constant;
inline const constant_t& DATA_T_measurements = lasting<"measurements">.constant;
inline const constant_t& DATA_T_MINOR = lasting<"MINOR">.constant;
inline const constant_t& DATA_T_name = lasting<"name">.constant;
inline const constant_t& DATA_T_params = lasting<"params">.constant;
inline const constant_t& DATA_T_PENDING = lasting<"PENDING">.constant;
inline const constant_t& DATA_T_position = lasting<"position">.constant;
inline const constant_t& DATA_T_pulsarPath = lasting<"pulsarPath">.constant;
inline const constant_t& DATA_T_vltDOTchannel = lasting<"vlt.channel">.constant;
inline const constant_t& DATA_T_vltDOTtype = lasting<"vlt.type">.constant;
inline const constant_t& DATA_T_severity = lasting<"severity">.constant;
inline const constant_t& DATA_T_source = lasting<"source">.constant;
inline const constant_t& DATA_T_status = lasting<"status">.constant;
inline const constant_t& DATA_T_SUCCESSFUL = lasting<"SUCCESSFUL">.constant;
inline const constant_t& DATA_T_supportedMeasurements = lasting<"supportedMeasurements">.constant;
inline const constant_t& DATA_T_supportedOperations = lasting<"supportedOperations">.constant;
inline const constant_t& DATA_T_tenantId = lasting<"tenantId">.constant;
inline const constant_t& DATA_T_text = lasting<"text">.constant;
inline const constant_t& DATA_T_time = lasting<"time">.constant;
inline const constant_t& DATA_T_towardsHostChannelPrefix =
    lasting<"towardsHostChannelPrefix">.constant;
inline const constant_t& DATA_T_type = lasting<"type">.constant;
inline const constant_t& DATA_T_units = lasting<"units">.constant;
inline const constant_t& DATA_T_value = lasting<"value">.constant;
inline const constant_t& DATA_T_WARNING = lasting<"WARNING">.constant;

// The types of the five host events.
inline const constant_t& ALARM_TYPE_DATA_T = lasting<"com.tivra.ostrovia.Alarm">.constant;
inline const constant_t& EVENT_TYPE_DATA_T = lasting<"com.tivra.ostrovia.Event">.constant;
inline const constant_t& MANAGEDOBJECT_TYPE_DATA_T =
    lasting<"com.tivra.ostrovia.ManagedObject">.constant;
inline const constant_t& MEASUREMENT_TYPE_DATA_T =
    lasting<"com.tivra.ostrovia.Measurement">.constant;
inline const constant_t& OPERATION_TYPE_DATA_T = lasting<"com.tivra.ostrovia.Operation">.constant;

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
