#include "bench/floor/planner.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "bench/settings.hpp"
#include "codec/timestamps.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::bench::floor {

namespace {

constexpr std::uint32_t PAYLOAD = PlanBuilder::PAYLOAD;
using taken_t = PlanBuilder::taken_t;

vlt_underlying_data_t emptyMap() {
  vlt_underlying_data_t value{};
  value.tag = VLT_TAG_MAP;
  return value;
}

bool isNumeric(const vlt_underlying_data_t& value) {
  if (value.tag != VLT_TAG_STRING) {
    return value.tag == VLT_TAG_DOUBLE || value.tag == VLT_TAG_INTEGER;
  }
  char* end = nullptr;
  std::strtod(value.value.string, &end);
  return end != value.value.string && std::strpbrk(value.value.string, "xX") == nullptr;
}

class Planner {
 public:
  Planner(const vlt_underlying_message_t& message, variant_t variant, Texts& texts)
      : plan_(message, variant, texts) {}

  plan_t make() {
    const vlt_underlying_data_t* const path = plan_.find(PlanBuilder::METADATA, "pulsarPath");
    if (path == nullptr) return passing();
    const std::string_view kind = typeSegment(path->value.string);
    if (kind.starts_with("alarms")) {
      alarm();
    } else if (kind.starts_with("events")) {
      event();
    } else if (kind.starts_with("measurements")) {
      measurement();
    } else if (kind.starts_with("managedobjects")) {
      managedObject();
    } else if (kind.starts_with("operations")) {
      operation();
    } else {
      throw std::logic_error("a floor needs one of the five kinds");
    }
    plan_.put(
        plan_.metadata, "vlt.channel",
        plan_.copied(kind.starts_with("measurements") ? MEASUREMENTS_CHANNEL : DEVICES_CHANNEL));
    plan_.put(plan_.fields, "tenantId", plan_.copied(TENANT));
    const OutputModel& series = series_;
    plan_.put(plan_.fields, "measurements",
              series.entries().empty() ? plan_.constant(emptyMap()) : plan_.finish(series));
    return plan_.result();
  }

 private:
  static plan_t passing() {
    plan_t plan;
    plan.passes = true;
    return plan;
  }
  static std::string_view typeSegment(std::string_view path) {
    path.remove_prefix(path.find('/') + 1);
    return path.substr(path.find('/') + 1);
  }

  // 1 s: the id's key; and the table with the source's other entries, 1 f.
  taken_t takeSourceId(const taken_t& source) {
    const std::uint32_t table = plan_.open(source);
    plan_.freeTable(table);
    return plan_.take(table, "id");
  }
  // 1 s for the key, 1 s for the text.
  origin_t takeTime() {
    const taken_t time = plan_.take(PAYLOAD, "time");
    plan_.drop(time);
    const auto seconds = plugins::pulsar::tryParseTime(time.value->value.string);
    if (!seconds) throw std::logic_error("a floor needs readable times");
    return plan_.constant(*seconds);
  }
  void put(const char* key, origin_t value) { plan_.put(plan_.fields, key, value); }
  void begin(const taken_t& id, const char* type) {
    put("id", PlanBuilder::moved(id));
    plan_.put(plan_.metadata, "vlt.type", plan_.copied(type));
  }
  void carryOverRest() {
    plan_.forEach(PAYLOAD,
                  [this](std::uint32_t slot) { plan_.putEntry(plan_.fields, PAYLOAD, slot); });
  }

  // Takes source, id, text, time, type: 5 s, the source's id: 1 s 1 f, the time's text: 1 s.
  // Sets id, source, text, firstOccurrenceTime, type: 5 c.
  // A date that is there: 2 s 1 c, and 1 s more for firstOccurrenceTime, which is set already.
  void event() {
    const taken_t source = plan_.take(PAYLOAD, "source");
    const taken_t id = plan_.take(PAYLOAD, "id");
    const taken_t source_id = takeSourceId(source);
    const taken_t text = plan_.take(PAYLOAD, "text");
    const origin_t time = takeTime();
    const taken_t type = plan_.take(PAYLOAD, "type");
    begin(id, "com.tivra.ostrovia.Event");
    put("source", PlanBuilder::moved(source_id));
    put("text", PlanBuilder::moved(text));
    put("firstOccurrenceTime", time);
    put("type", PlanBuilder::moved(type));
    for (const char* date : {"creationTime", "firstOccurrenceTime", "lastUpdated"}) {
      plan_.convertDate(date);
    }
    carryOverRest();
  }

  // Takes source, id, count, severity, status, text, time, type: 8 s, the source's id: 1 s 1 f, the
  // texts of severity, status and time: 3 s.
  // Sets id, count, severity, source, status, text, time, type: 8 c, and the texts of severity and
  // status: 2 c. A date that is there: 2 s 1 c.
  void alarm() {
    const taken_t source = plan_.take(PAYLOAD, "source");
    const taken_t id = plan_.take(PAYLOAD, "id");
    const taken_t count = plan_.take(PAYLOAD, "count");
    const taken_t severity = plan_.take(PAYLOAD, "severity");
    const taken_t source_id = takeSourceId(source);
    const taken_t status = plan_.take(PAYLOAD, "status");
    const taken_t text = plan_.take(PAYLOAD, "text");
    const origin_t time = takeTime();
    const taken_t type = plan_.take(PAYLOAD, "type");
    begin(id, "com.tivra.ostrovia.Alarm");
    put("count", plan_.constant(*count.value));
    put("severity", validated(severity));
    put("source", PlanBuilder::moved(source_id));
    put("status", validated(status));
    put("text", PlanBuilder::moved(text));
    put("time", time);
    put("type", PlanBuilder::moved(type));
    for (const char* date : {"creationTime", "firstOccurrenceTime", "lastUpdated"}) {
      plan_.convertDate(date);
    }
    carryOverRest();
  }
  // Frees the string and copies the constant: 1 s 1 c.
  origin_t validated(const taken_t& text) {
    plan_.drop(text);
    return plan_.copied(text.value->value.string);
  }

  // Takes source, deviceId, status: 3 s, the source's id: 1 s 1 f, the status' text: 1 s.
  // Sets id, source, status: 3 c, and the status' text: 1 c. A date that is there: 2 s 1 c. The
  // payload's own id replaces the deviceId: 1 s for its key, 1 s for the deviceId.
  void operation() {
    const taken_t source = plan_.take(PAYLOAD, "source");
    const taken_t device = plan_.take(PAYLOAD, "deviceId");
    const taken_t source_id = takeSourceId(source);
    const taken_t status = plan_.take(PAYLOAD, "status");
    begin(device, "com.tivra.ostrovia.Operation");
    put("source", PlanBuilder::moved(source_id));
    put("status", validated(status));
    for (const char* date : {"creationTime", "firstOccurrenceTime", "lastUpdated"}) {
      plan_.convertDate(date);
    }
    carryOverRest();
  }

  // Takes source, id, time, type: 4 s, the source's id: 1 s 1 f, the time's text: 1 s.
  // Sets id, source, time, type: 4 c. A date that is there: 2 s 1 c.
  // With a series, the table of series: 1 a + r. A fragment: 1 s for its key, 1 f for its table.
  void measurement() {
    const taken_t source = plan_.take(PAYLOAD, "source");
    const taken_t id = plan_.take(PAYLOAD, "id");
    const taken_t source_id = takeSourceId(source);
    const origin_t time = takeTime();
    const taken_t type = plan_.take(PAYLOAD, "type");
    begin(id, "com.tivra.ostrovia.Measurement");
    put("source", PlanBuilder::moved(source_id));
    put("time", time);
    put("type", PlanBuilder::moved(type));
    for (const char* date : {"creationTime", "lastUpdated"}) plan_.convertDate(date);
    plan_.forEach(PAYLOAD, [this](std::uint32_t slot) {
      const vlt_underlying_data_t& value = plan_.slotAt(PAYLOAD, slot).value;
      if (!isFragment(value)) return plan_.putEntry(plan_.fields, PAYLOAD, slot);
      fragments_.push_back(slot);
    });
    for (const std::uint32_t slot : fragments_) takeFragment(slot);
  }
  static bool isFragment(const vlt_underlying_data_t& value) {
    if (value.tag != VLT_TAG_MAP) return false;
    const auto& fragment = data_t::view(value).get<map_t>();
    for (const auto& [name, series] : fragment) {
      if (series.type_tag() != VLT_TAG_MAP) return false;
      const auto& content = series.get<map_t>();
      const auto number = content.find(data_t("value"));
      if (number == content.end() || !isNumeric(*(*number).second.underlying())) return false;
    }
    return true;
  }
  void takeFragment(std::uint32_t slot) {
    const std::uint32_t fragment = plan_.open(plan_.takeAt(PAYLOAD, slot));
    plan_.freeTable(fragment);
    plan_.forEach(fragment, [&](std::uint32_t at) {
      const origin_t value = measurementValue(fragment, at);
      if (!plan_.insertUnder(series_, fragment, at, value)) {
        throw std::logic_error("a floor needs series of different names");
      }
    });
  }
  // A series: value and, if it is there, units change tables: 1 s 1 c each. The new table: 1 a, and
  // the key "params" for the old one: 1 c.
  origin_t measurementValue(std::uint32_t fragment, std::uint32_t slot) {
    const taken_t series{fragment, slot, &plan_.slotAt(fragment, slot).value};
    const std::uint32_t table = plan_.open(series);
    OutputModel value;
    plan_.put(value, "value", PlanBuilder::moved(plan_.take(table, "value")));
    if (const auto units = plan_.takeIfPresent(table, "units")) {
      plan_.put(value, "units", PlanBuilder::moved(*units));
    }
    plan_.put(value, "params", PlanBuilder::moved(series));
    return plan_.finish(value);
  }

  // Takes id, name, type: 3 s, the type's text: 1 s (1 c 1 s without a type, for an empty text).
  // Sets id, source: 2 c. A supported list or a reference that is there: 1 s 1 c. A date that is
  // there: 2 s 1 c.
  void managedObject() {
    const taken_t id = plan_.take(PAYLOAD, "id");
    const taken_t name = plan_.take(PAYLOAD, "name");
    if (const auto type = plan_.takeIfPresent(PAYLOAD, "type")) {
      plan_.drop(*type);
    } else {
      plan_.copyInVain("");
    }
    begin(id, "com.tivra.ostrovia.ManagedObject");
    put("source", PlanBuilder::moved(name));
    rename("o6a_SupportedOperations", "supportedOperations");
    rename("o6a_SupportedMeasurements", "supportedMeasurements");
    position();
    rename("childDevices", "childDeviceIds");
    rename("childAssets", "childAssetIds");
    rename("childAdditions", "childAdditionIds");
    rename("deviceParents", "deviceParentIds");
    rename("assetParents", "assetParentIds");
    rename("additionParents", "additionParentIds");
    for (const char* date : {"creationTime", "lastUpdated"}) plan_.convertDate(date);
    carryOverRest();
  }
  void rename(const char* from, const char* to) {
    if (const auto value = plan_.takeIfPresent(PAYLOAD, from)) {
      put(to, PlanBuilder::moved(*value));
    }
  }
  // A position: 1 s for its key, 1 f for its table. With numeric components: 1 a + r for their table,
  // 1 c for the field's key. With others: 1 a 1 f for the table that they pass through.
  void position() {
    const auto position = plan_.takeIfPresent(PAYLOAD, "o6a_Position");
    if (!position) return;
    const std::uint32_t table = plan_.open(*position);
    plan_.freeTable(table);
    OutputModel components;
    OutputModel others;
    plan_.forEach(table, [&](std::uint32_t slot) {
      const bool is_number = isNumeric(plan_.slotAt(table, slot).value);
      plan_.putEntry(is_number ? components : others, table, slot);
    });
    if (!components.entries().empty()) put("position", plan_.finish(components));
    if (others.entries().empty()) return;
    plan_.makeTransient(others.table());
    std::vector<std::pair<std::uint32_t, std::uint32_t>> by_slot; // slot of others, slot of table
    for (const entry_t& entry : others.entries())
      by_slot.emplace_back(entry.slot, entry.key.slot());
    std::sort(by_slot.begin(), by_slot.end());
    for (const auto& [slot, from] : by_slot) plan_.putEntry(plan_.fields, table, from);
  }

  PlanBuilder plan_;
  OutputModel series_;
  std::vector<std::uint32_t> fragments_; // slots of the payload
};

} // namespace

plan_t makePlan(const vlt_underlying_message_t& message, variant_t variant, Texts& texts) {
  return Planner(message, variant, texts).make();
}

} // namespace com::velanto::connectivity::bench::floor
