// Every constant owns a string with the text in its name.
#include "codec/vocabulary.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

struct constant_row_t {
  const constant_t& constant;
  const char* text;
};

void expectTexts(const std::vector<constant_row_t>& rows) {
  for (const constant_row_t& row : rows) {
    const data_t& key = row.constant;
    EXPECT_EQ(key.type_tag(), VLT_TAG_STRING) << row.text;
    EXPECT_STREQ(key.get<const char*>(), row.text);
    EXPECT_STREQ(row.constant.text(), row.text);
  }
}

TEST(Constants, KeysHoldTheirTexts) {
  expectTexts({
      {DATA_T_, ""},
      {DATA_T_additionParentIds, "additionParentIds"},
      {DATA_T_additionParents, "additionParents"},
      {DATA_T_assetParentIds, "assetParentIds"},
      {DATA_T_assetParents, "assetParents"},
      {DATA_T_o6a_Position, "o6a_Position"},
      {DATA_T_o6a_SupportedMeasurements, "o6a_SupportedMeasurements"},
      {DATA_T_o6a_SupportedOperations, "o6a_SupportedOperations"},
      {DATA_T_childAdditionIds, "childAdditionIds"},
      {DATA_T_childAdditions, "childAdditions"},
      {DATA_T_childAssetIds, "childAssetIds"},
      {DATA_T_childAssets, "childAssets"},
      {DATA_T_childDeviceIds, "childDeviceIds"},
      {DATA_T_childDevices, "childDevices"},
      {DATA_T_count, "count"},
      {DATA_T_creationTime, "creationTime"},
      {DATA_T_deviceId, "deviceId"},
      {DATA_T_deviceParentIds, "deviceParentIds"},
      {DATA_T_deviceParents, "deviceParents"},
      {DATA_T_firstOccurrenceTime, "firstOccurrenceTime"},
      {DATA_T_id, "id"},
      {DATA_T_lastUpdated, "lastUpdated"},
      {DATA_T_measurements, "measurements"},
      {DATA_T_name, "name"},
      {DATA_T_params, "params"},
      {DATA_T_position, "position"},
      {DATA_T_pulsarPath, "pulsarPath"},
      {DATA_T_vltDOTchannel, "vlt.channel"},
      {DATA_T_vltDOTtype, "vlt.type"},
      {DATA_T_severity, "severity"},
      {DATA_T_source, "source"},
      {DATA_T_status, "status"},
      {DATA_T_supportedMeasurements, "supportedMeasurements"},
      {DATA_T_supportedOperations, "supportedOperations"},
      {DATA_T_tenantId, "tenantId"},
      {DATA_T_text, "text"},
      {DATA_T_time, "time"},
      {DATA_T_towardsHostChannelPrefix, "towardsHostChannelPrefix"},
      {DATA_T_type, "type"},
      {DATA_T_units, "units"},
      {DATA_T_value, "value"},
  });
}

TEST(Constants, EnumerationValuesHoldTheirTexts) {
  expectTexts({
      {DATA_T_ACKNOWLEDGED, "ACKNOWLEDGED"},
      {DATA_T_ACTIVE, "ACTIVE"},
      {DATA_T_CLEARED, "CLEARED"},
      {DATA_T_CRITICAL, "CRITICAL"},
      {DATA_T_EXECUTING, "EXECUTING"},
      {DATA_T_FAILED, "FAILED"},
      {DATA_T_MAJOR, "MAJOR"},
      {DATA_T_MINOR, "MINOR"},
      {DATA_T_PENDING, "PENDING"},
      {DATA_T_SUCCESSFUL, "SUCCESSFUL"},
      {DATA_T_WARNING, "WARNING"},
  });
}

TEST(Constants, EventTypesHoldTheirTexts) {
  expectTexts({
      {ALARM_TYPE_DATA_T, "com.tivra.ostrovia.Alarm"},
      {EVENT_TYPE_DATA_T, "com.tivra.ostrovia.Event"},
      {MANAGEDOBJECT_TYPE_DATA_T, "com.tivra.ostrovia.ManagedObject"},
      {MEASUREMENT_TYPE_DATA_T, "com.tivra.ostrovia.Measurement"},
      {OPERATION_TYPE_DATA_T, "com.tivra.ostrovia.Operation"},
  });
}

TEST(Constants, PlainTextsMatchTheirNames) {
  EXPECT_STREQ(STR_Notifications2Codec, "Notifications2Codec");
  EXPECT_STREQ(STR_measurementSplittingChannel, "measurementSplittingChannel");
  EXPECT_STREQ(STR_ostroviaDOTmeasurements, "ostrovia.measurements");
  EXPECT_STREQ(STR_ostroviaDOTdevices, "ostrovia.devices");
  EXPECT_STREQ(STR_alarms, "alarms");
  EXPECT_STREQ(STR_events, "events");
  EXPECT_STREQ(STR_measurements, "measurements");
  EXPECT_STREQ(STR_managedobjects, "managedobjects");
  EXPECT_STREQ(STR_operations, "operations");
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
