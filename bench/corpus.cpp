#include "bench/corpus.hpp"

#include <algorithm>
#include <cstdint>
#include <random>
#include <stdexcept>

#include "bench/json_text.hpp"

namespace com::velanto::connectivity::bench {

namespace {

using std::to_string;

enum class fault_t { NONE, MISSING_KEY, BAD_CONTENT, NO_STRING, WRONG_KIND };

constexpr std::array COMMON_FAULTS = {fault_t::MISSING_KEY, fault_t::BAD_CONTENT,
                                      fault_t::NO_STRING};

// The standard distributions differ between libraries; a remainder does not.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : engine_(seed) {}
  std::size_t below(std::size_t bound) { return engine_() % bound; }
  std::size_t between(std::size_t low, std::size_t high) { return low + below(high - low + 1); }
  bool oneIn(std::size_t chances) { return below(chances) == 0; }
  template <class Rows>
  auto of(const Rows& rows) {
    return rows[below(rows.size())];
  }
  std::mt19937_64& engine() noexcept { return engine_; }

 private:
  std::mt19937_64 engine_;
};

std::string twoDigits(std::size_t number) {
  std::string text = to_string(number);
  if (number < 10) text.insert(text.begin(), '0');
  return text;
}

// Makes the payloads of the five kinds; each fault hits a field that the conversion reads late. One
// random number per statement, since the compiler chooses the order within an expression.
class Maker {
 public:
  explicit Maker(std::uint64_t seed) : dice_(seed) {}

  std::string line(kind_t kind, fault_t fault) {
    ++number_;
    const std::string path = std::string("t4100/bench/") + nameOf(kind) + '/' + id();
    return whole(JsonObject().text("pulsarPath", path), payload(kind, fault));
  }
  std::string passingLine(kind_t kind) {
    ++number_;
    return whole(JsonObject().text("origin", std::string("gateway-") + id()),
                 payload(kind, fault_t::NONE));
  }
  // The common fields of all notifications of a kind.
  JsonObject opening(kind_t kind, fault_t fault) {
    JsonObject object;
    object.text("id", id()).text("self", std::string(SITE) + nameOf(kind) + '/' + id());
    if (kind == kind_t::MANAGEDOBJECTS) return object;
    if (fault == fault_t::WRONG_KIND && kind != kind_t::ALARMS) return object.text("source", "G1");
    const std::string device = to_string(1000 + dice_.below(500));
    JsonObject source;
    source.text("id", device);
    source.text("name", std::string("Pump gateway G") + device);
    source.text("self", std::string(SITE) + "inventory/" + device);
    return object.member("source", source.str());
  }
  static std::string whole(const JsonObject& metadata, const JsonObject& payload) {
    return JsonObject().member("metadata", metadata.str()).member("payload", payload.str()).str();
  }
  std::string time() {
    static constexpr std::array ZONES = {"Z", "+02:00", "-05:30", "Z"};
    std::string text = "2024-";
    text += twoDigits(dice_.between(1, 12)) += '-';
    text += twoDigits(dice_.between(1, 28)) += 'T';
    text += twoDigits(dice_.below(24)) += ':';
    text += twoDigits(dice_.below(60)) += ':';
    text += twoDigits(dice_.below(60)) += '.';
    text += to_string(dice_.between(100, 999));
    return text += dice_.of(ZONES);
  }
  std::string number() {
    std::string text = to_string(dice_.below(1000)) += '.';
    return text += to_string(dice_.between(1, 99));
  }
  std::string series() {
    static constexpr std::array UNITS = {"C", "bar", "m/s", "m3/h", "kWh", "%"};
    JsonObject object;
    object.member("value", dice_.oneIn(4) ? to_string(dice_.below(5000)) : number());
    if (!dice_.oneIn(10)) object.text("units", dice_.of(UNITS));
    if (dice_.oneIn(8)) object.member("limit", number()).text("quality", "good");
    return object.str();
  }

 private:
  static constexpr const char* SITE = "https://bench.ostrovia.example/";

  std::string id() const { return to_string(60000 + number_); }

  JsonObject payload(kind_t kind, fault_t fault) {
    switch (kind) {
      case kind_t::ALARMS:
        return alarm(fault);
      case kind_t::EVENTS:
        return event(fault);
      case kind_t::MEASUREMENTS:
        return measurement(fault);
      case kind_t::MANAGEDOBJECTS:
        return managedObject(fault);
      default:
        return operation(fault);
    }
  }

  void addType(JsonObject& object, fault_t fault) {
    static constexpr std::array TYPES = {"site_Pump", "site_Wind", "site_Hoist", "site_Gate"};
    if (fault == fault_t::NO_STRING) {
      object.member("type", "17");
    } else if (fault != fault_t::MISSING_KEY) {
      object.text("type", dice_.of(TYPES));
    }
  }
  void addTime(JsonObject& object, fault_t fault) {
    object.text("time", fault == fault_t::BAD_CONTENT ? "yesterday at ten, more or less" : time());
  }
  void addDates(JsonObject& object, std::size_t chances) {
    if (!dice_.oneIn(chances)) object.text("creationTime", time());
    if (dice_.oneIn(chances)) object.text("lastUpdated", time());
  }
  std::string fragment() {
    JsonObject object;
    object.member("level", number()).text("units", "m");
    return object.text("remark", "raised by the shift lead").str();
  }

  JsonObject alarm(fault_t fault) {
    static constexpr std::array SEVERITIES = {"CRITICAL", "MAJOR", "MINOR", "WARNING"};
    static constexpr std::array STATES = {"ACTIVE", "ACKNOWLEDGED", "CLEARED"};
    JsonObject object = opening(kind_t::ALARMS, fault);
    addType(object, fault);
    object.text("text", std::string("Gusts above ") + number() + " m/s at the jib");
    object.text("severity", fault == fault_t::BAD_CONTENT ? "Severe" : dice_.of(SEVERITIES));
    object.text("status", dice_.of(STATES));
    object.member("count",
                  fault == fault_t::WRONG_KIND ? quoted("three") : to_string(dice_.between(1, 40)));
    addTime(object, fault_t::NONE);
    object.text("creationTime", time()).text("firstOccurrenceTime", time());
    if (dice_.oneIn(2)) object.text("lastUpdated", time());
    if (dice_.oneIn(2)) object.member("site_Gust", fragment());
    return object;
  }

  JsonObject event(fault_t fault) {
    JsonObject object = opening(kind_t::EVENTS, fault);
    addType(object, fault);
    object.text("text", 'P' + to_string(dice_.below(9)) + " started on high level");
    addTime(object, fault);
    addDates(object, 3);
    if (dice_.oneIn(4)) object.text("firstOccurrenceTime", time());
    if (!dice_.oneIn(4)) object.member("site_Trigger", fragment());
    if (dice_.oneIn(3)) object.member("site_Crew", R"(["D-17","D-21"])");
    return object;
  }

  JsonObject measurement(fault_t fault) {
    static constexpr std::array FRAGMENTS = {"site_Wind", "site_Pressure", "site_Flow"};
    // Four for each fragment. No two share a name: which of them stays depends on the order of the
    // walk, and the peers have another order.
    static constexpr std::array NAMES = {"speed", "gust", "direction", "chill", "p",    "pMax",
                                         "T",     "leak", "q",         "total", "load", "v"};
    JsonObject object = opening(kind_t::MEASUREMENTS, fault);
    addType(object, fault);
    addTime(object, fault);
    addDates(object, 4);
    const std::size_t fragments = dice_.between(1, FRAGMENTS.size());
    for (std::size_t i = 0; i < fragments; ++i) {
      JsonObject members;
      const std::size_t count = dice_.between(1, 4);
      for (std::size_t k = 0; k < count; ++k) members.member(NAMES[4 * i + k], series());
      object.member(FRAGMENTS[i], members.str());
    }
    return object;
  }

  JsonObject managedObject(fault_t fault) {
    static constexpr std::array REFERENCES = {"childDevices",  "childAssets",  "childAdditions",
                                              "deviceParents", "assetParents", "additionParents"};
    const std::size_t fields = dice_.between(15, 40);
    JsonObject object = fault == fault_t::BAD_CONTENT ? JsonObject().member("id", "4711")
                                                      : opening(kind_t::MANAGEDOBJECTS, fault);
    if (fault != fault_t::MISSING_KEY) object.text("name", std::string("Tower crane K") + id());
    if (fault == fault_t::NO_STRING || !dice_.oneIn(5)) {
      addType(object, fault == fault_t::NO_STRING ? fault : fault_t::NONE);
    }
    object.text("owner", "site-office").text("creationTime", time()).text("lastUpdated", time());
    object.member("o6a_Position", dice_.oneIn(3)
                                      ? R"({"lat":53.5421,"lng":9.9861,"alt":"62.5","fix":"good"})"
                                      : R"({"lat":53.5421,"lng":9.9861,"alt":62.5})");
    object.member("o6a_SupportedOperations", R"(["site_Weathervane","site_SetLimit"])");
    object.member("o6a_SupportedMeasurements", R"(["site_Wind","site_Hoist"])");
    const std::size_t references = dice_.between(1, REFERENCES.size());
    for (std::size_t i = 0; i < references; ++i) object.member(REFERENCES[i], reference());
    for (std::size_t i = 10 + references; i < fields; ++i) addProperty(object, i);
    return object;
  }
  void addProperty(JsonObject& object, std::size_t number_of_property) {
    const std::string key = std::string("site_Property") + to_string(number_of_property);
    if (dice_.oneIn(4)) {
      object.member(key, fragment());
    } else if (dice_.oneIn(2)) {
      object.member(key, number());
    } else {
      object.text(key, std::string("checked by D-") + to_string(number_of_property));
    }
  }
  std::string reference() {
    const std::string other = to_string(1000 + dice_.below(500));
    return JsonObject()
        .text("self", std::string(SITE) + "inventory/" + other + "/references")
        .member("references", std::string("[") + JsonObject().text("id", other).str() + ']')
        .str();
  }

  JsonObject operation(fault_t fault) {
    static constexpr std::array STATES = {"SUCCESSFUL", "FAILED", "EXECUTING", "PENDING"};
    JsonObject object = opening(kind_t::OPERATIONS, fault);
    const std::string device = to_string(1000 + dice_.below(500));
    object.member("deviceId", fault == fault_t::NO_STRING ? "1040" : quoted(device));
    if (fault != fault_t::MISSING_KEY) {
      object.text("status", fault == fault_t::BAD_CONTENT ? "DONE" : dice_.of(STATES));
    }
    addDates(object, 5);
    object.text("description", "Stop P2: dry running");
    object.member("site_SetPump", R"({"pump":"1021","run":false})");
    return object;
  }

  Dice dice_;
  std::size_t number_ = 0;
};

lines_t faulty(kind_t kind, std::size_t count) {
  Maker maker(3);
  lines_t lines;
  for (std::size_t i = 0; i < count; ++i) {
    lines.push_back(maker.line(kind, COMMON_FAULTS[i % COMMON_FAULTS.size()]));
  }
  return lines;
}

// The kinds of a mix of `count`, shuffled.
std::vector<kind_t> mix(std::size_t count) {
  constexpr std::array<std::size_t, 5> PERCENT = {10, 15, 60, 10, 5}; // in the order of ALL_KINDS
  std::vector<kind_t> kinds;
  std::size_t percent = 0;
  for (std::size_t i = 0; i < ALL_KINDS.size(); ++i) {
    percent += PERCENT[i];
    kinds.resize((count * percent + 50) / 100, ALL_KINDS[i]);
  }
  Dice dice(1);
  for (std::size_t i = count; i > 1; --i) std::swap(kinds[i - 1], kinds[dice.below(i)]);
  return kinds;
}

} // namespace

const char* nameOf(kind_t kind) noexcept {
  static constexpr std::array NAMES = {"alarms", "events", "measurements", "managedobjects",
                                       "operations"};
  return NAMES[static_cast<std::size_t>(kind)];
}

lines_t notifications(kind_t kind, std::size_t count) {
  Maker maker(2);
  lines_t lines;
  for (std::size_t i = 0; i < count; ++i) lines.push_back(maker.line(kind, fault_t::NONE));
  return lines;
}

lines_t mixedNotifications(std::size_t count) {
  Maker maker(1);
  lines_t lines;
  for (const kind_t kind : mix(count)) lines.push_back(maker.line(kind, fault_t::NONE));
  return lines;
}

lines_t passingMessages(std::size_t count) {
  Maker maker(1);
  lines_t lines;
  for (const kind_t kind : mix(count)) lines.push_back(maker.passingLine(kind));
  return lines;
}

lines_t droppedNotifications(kind_t kind, std::size_t count) { return faulty(kind, count); }

lines_t wronglyTypedNotifications(std::size_t count) {
  constexpr std::array KINDS = {kind_t::ALARMS, kind_t::EVENTS, kind_t::MEASUREMENTS,
                                kind_t::OPERATIONS};
  Maker maker(4);
  lines_t lines;
  for (std::size_t i = 0; i < count; ++i) {
    lines.push_back(maker.line(KINDS[i % KINDS.size()], fault_t::WRONG_KIND));
  }
  return lines;
}

lines_t eventWithFields(std::size_t fields) {
  Maker maker(5);
  JsonObject payload = maker.opening(kind_t::EVENTS, fault_t::NONE);
  payload.text("type", "site_Pump").text("text", "many fields").text("time", maker.time());
  for (std::size_t i = 0; i < fields; ++i) {
    payload.member(std::string("site_Property") + to_string(i), maker.number());
  }
  return {Maker::whole(JsonObject().text("pulsarPath", "t4100/bench/events/1"), payload)};
}

lines_t measurementWithSeries(std::size_t series) {
  Maker maker(6);
  JsonObject payload = maker.opening(kind_t::MEASUREMENTS, fault_t::NONE);
  payload.text("type", "site_Pump").text("time", maker.time());
  JsonObject fragment;
  for (std::size_t i = 0; i < series; ++i) fragment.member('s' + to_string(i), maker.series());
  payload.member("site_Array", fragment.str());
  return {Maker::whole(JsonObject().text("pulsarPath", "t4100/bench/measurements/1"), payload)};
}

lines_t managedObjectWithPosition(std::size_t components) {
  Maker maker(7);
  JsonObject payload = maker.opening(kind_t::MANAGEDOBJECTS, fault_t::NONE);
  payload.text("name", "Tower crane").text("type", "site_Crane");
  JsonObject position;
  for (std::size_t i = 0; i < components; ++i) {
    position.member('c' + to_string(i), maker.number());
  }
  payload.member("o6a_Position", position.str());
  return {Maker::whole(JsonObject().text("pulsarPath", "t4100/bench/managedobjects/1"), payload)};
}

} // namespace com::velanto::connectivity::bench
