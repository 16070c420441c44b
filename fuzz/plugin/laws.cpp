#include "fuzz/plugin/laws.hpp"

#include <algorithm>
#include <set>

#include "fuzz/finding.hpp"

namespace com::velanto::connectivity::fuzz {

namespace {

constexpr vlt_log_level_t DROPPED_LEVEL = 3;
constexpr vlt_log_level_t TRACE_LEVEL = 6;

std::size_t linesAt(vlt_log_level_t level, const std::vector<line_t>& lines) {
  return static_cast<std::size_t>(std::count_if(
      lines.begin(), lines.end(), [=](const line_t& line) { return line.level == level; }));
}

// The setting as the plug-in's copy of the configuration has it, where borrowed keys are owned.
const model::value_t* setting(const model::table_t& copy, const char* key) {
  const model::value_t* const value = find(copy, key);
  return value == nullptr || value->tag == VLT_TAG_EMPTY ? nullptr : value;
}

// Null when the value under the key is no string and does not become one.
std::string textOr(const model::value_t* value, const std::string& fallback) {
  return value != nullptr && isText(*value) ? value->text : fallback;
}

// The kind that a path routes to: the part after its second '/' begins with the segment's name.
const kind_t* kindOf(const model::value_t& path) {
  if (!isText(path)) return nullptr;
  const std::size_t first = path.text.find('/');
  const std::size_t second = first == std::string::npos ? first : path.text.find('/', first + 1);
  if (second == std::string::npos) return nullptr;
  for (const kind_t& kind : KINDS) {
    if (path.text.compare(second + 1, std::string(kind.segment).size(), kind.segment) == 0) {
      return &kind;
    }
  }
  return nullptr;
}

void requireText(const model::table_t& table, const char* key, const std::string& expected) {
  const model::value_t* const value = find(table, key);
  require(value != nullptr && value->tag == VLT_TAG_STRING, "an event has its strings");
  if (value->text != expected) {
    reportFinding(std::string(key) + " is '" + value->text + "', not '" + expected + "'");
  }
}

// A prefix that is a number or truth becomes a string; other checks cover that.
bool hasOddPrefix(const model::table_t& copy) {
  const model::value_t* const prefix = setting(copy, "towardsHostChannelPrefix");
  return prefix != nullptr && prefix->tag >= VLT_TAG_BOOLEAN && prefix->tag <= VLT_TAG_INTEGER;
}

void judgeEvent(const scenario_t& scenario, const kind_t& kind,
                const vlt_underlying_message_t& after) {
  const message_t event = modelOf(after);
  require(event.payload.tag == VLT_TAG_MAP, "an event's payload is a map");
  require(event.metadata.live == 2, "an event has its type and channel as metadata, no more");
  requireText(event.metadata, "vlt.type", std::string("com.tivra.ostrovia.") + kind.type);
  require(find(event.payload.table, "measurements") != nullptr, "an event has measurements");

  const model::table_t settings = model::copied(scenario.configuration).table;
  const std::string tenant = textOr(setting(settings, "tenantId"), "");
  if (!tenant.empty()) requireText(event.payload.table, "tenantId", tenant);
  if (kind.type == std::string("Measurement")) {
    requireText(event.metadata, "vlt.channel",
                textOr(setting(settings, "measurementSplittingChannel"), "ostrovia.measurements"));
  } else if (!hasOddPrefix(settings)) {
    requireText(event.metadata, "vlt.channel",
                textOr(setting(settings, "towardsHostChannelPrefix"), "") + "ostrovia.devices");
  }
}

// Whether a conversion may do more with a field of this name than carry it over. All names that the
// codec knows are strings; a key of another kind is none of them.
bool mayBeInterpreted(const model::value_t& key) {
  static const std::set<std::string> KNOWN = {"id",
                                              "source",
                                              "deviceId",
                                              "name",
                                              "type",
                                              "text",
                                              "time",
                                              "count",
                                              "severity",
                                              "status",
                                              "creationTime",
                                              "firstOccurrenceTime",
                                              "lastUpdated",
                                              "tenantId",
                                              "measurements",
                                              "position",
                                              "o6a_Position",
                                              "o6a_SupportedOperations",
                                              "o6a_SupportedMeasurements",
                                              "supportedOperations",
                                              "supportedMeasurements",
                                              "childDevices",
                                              "childAssets",
                                              "childAdditions",
                                              "deviceParents",
                                              "assetParents",
                                              "additionParents",
                                              "childDeviceIds",
                                              "childAssetIds",
                                              "childAdditionIds",
                                              "deviceParentIds",
                                              "assetParentIds",
                                              "additionParentIds"};
  return key.tag == VLT_TAG_STRING && KNOWN.contains(key.text);
}

// Fields that no conversion knows are in the event as they were in the notification.
void judgeCarriedOver(const kind_t& kind, const message_t& before,
                      const vlt_underlying_message_t& after) {
  const model::table_t event = modelOf(after).payload.table;
  const auto* const slots =
      reinterpret_cast<const vlt_underlying_map_table_entry_t*>(after.payload.value.map + 1);
  const bool is_measurement = kind.type == std::string("Measurement");
  for (const model::slot_t& field : before.payload.table.slots) {
    if (!model::is_live(field) || mayBeInterpreted(field.key)) continue;
    if (!model::equal(field.key, field.key)) continue;              // a key that nothing finds
    if (is_measurement && field.value.tag == VLT_TAG_MAP) continue; // perhaps a fragment
    const auto found = model::look_up(event, field.key, field.hash).found;
    require(found.has_value(), "an unknown field is carried over");
    requireNone(model::difference(slots[*found].value, field.value), "an unknown field");
  }
}

// A dropped message holds all of its payload if that is no map, otherwise at most its id.
void judgeRemains(const message_t& before, const vlt_underlying_message_t& after) {
  if (before.payload.tag != VLT_TAG_MAP) {
    return requireNone(difference(after, before), "a payload that is no map stays");
  }
  const message_t remains = modelOf(after);
  require(!remains.metadata.exists, "a dropped message has no metadata");
  const model::value_t* const id = find(before.payload.table, "id");
  if (id == nullptr || !isText(*id)) {
    require(remains.payload.tag == VLT_TAG_EMPTY, "without id a dropped message is empty");
    return;
  }
  require(remains.payload.tag == VLT_TAG_MAP && remains.payload.table.live == 1,
          "a dropped message has its id only");
  requireText(remains.payload.table, "id", id->text);
}

void judgeReport(const scenario_t& scenario, const outcome_t& outcome, bool dropped) {
  const std::size_t expected = dropped && scenario.level >= DROPPED_LEVEL ? 1 : 0;
  require(linesAt(DROPPED_LEVEL, outcome.lines) == expected,
          "a message is reported once if it is dropped, and never if not");
  if (expected == 0) return;
  require(outcome.lines.back().text.starts_with(
              "<connectivity.fuzz.chain> Error when transforming message towards host"),
          "the last line of a dropped message is its report");
}

} // namespace

bool mustBeRefused(const scenario_t& scenario) {
  if (!scenario.has_configuration || scenario.configuration.tag != VLT_TAG_MAP) return true;
  const model::table_t settings = model::copied(scenario.configuration).table;
  const model::value_t* const tenant = setting(settings, "tenantId");
  const model::value_t* const channel = setting(settings, "measurementSplittingChannel");
  const bool has_null_channel = channel != nullptr && isText(*channel) && channel->null;
  return tenant == nullptr || !isText(*tenant) || has_null_channel;
}

verdict_t judge(const scenario_t& scenario, const message_t& before,
                const vlt_underlying_message_t& after, const outcome_t& outcome) {
  require(outcome.result == 0, "a batch succeeds, also with dropped messages");
  require(outcome.kept.has_value(), "a batch is passed on, even an empty one");
  const model::value_t* const path = find(before.metadata, "pulsarPath");
  if (before.payload.tag == VLT_TAG_EMPTY || path == nullptr) {
    require(outcome.kept == 1 && outcome.lines.empty(),
            "a message that is no notification passes silently");
    requireNone(difference(after, before), "a message that is no notification passes unchanged");
    return {fate_t::PASSED, nullptr};
  }
  require(linesAt(TRACE_LEVEL, outcome.lines) == (scenario.level >= TRACE_LEVEL ? 1U : 0U),
          "a notification is traced once from level 6 on");
  const bool is_kept = outcome.kept == 1;
  judgeReport(scenario, outcome, !is_kept);
  if (!is_kept) {
    judgeRemains(before, after);
    return {fate_t::DROPPED, nullptr};
  }
  const kind_t* const kind = kindOf(*path);
  require(kind != nullptr, "a notification of an unknown kind is dropped");
  judgeEvent(scenario, *kind, after);
  judgeCarriedOver(*kind, before, after);
  return {fate_t::CONVERTED, kind};
}

} // namespace com::velanto::connectivity::fuzz
