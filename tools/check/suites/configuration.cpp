// The effect of a codec's section of the configuration, and the values that it leaves alone.
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "standin/standin.h"
#include "tools/check/blocks.hpp"
#include "tools/check/chain.hpp"
#include "tools/check/examples.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

// Channel and tenant of an event and of a measurement.
struct effect_t {
  std::string devices;
  std::string measurements;
  std::string tenant; // empty: no field of that name
};

void expectEffect(Trial& trial, const std::string& where, const data_t& configuration,
                  const effect_t& expected) {
  Log log;
  const PluginLibrary library = load(trial);
  Codec codec(trial, library, configuration);
  codec.link();
  std::vector<Message> batch;
  batch.push_back(plainEvent("1"));
  batch.push_back(plainMeasurement("2"));
  trial.equal(where + ", result", 0, codec.towardsHost(batch));
  if (!trial.equal(where + ", events", 2, codec.host.messages.size())) return;
  const std::string* const channels[] = {&expected.devices, &expected.measurements};
  for (std::size_t i = 0; i < 2; ++i) {
    const Message& event = codec.host.messages[i];
    trial.equal(where + ", vlt.channel", *channels[i],
                textAt(event.getMetadataMap(), "vlt.channel"));
    trial.equal(where + ", tenantId", expected.tenant, textAt(event.getPayload(), "tenantId"));
    trial.equal(where + ", has a tenantId", !expected.tenant.empty(),
                find(event.getPayload(), "tenantId") != nullptr);
  }
  trial.equal(where + ", log", lines_t{}, log.take());
}

void expectEffect(Trial& trial, const char* json, const effect_t& expected) {
  expectEffect(trial, json, value(json), expected);
}

// Expects a refusal with exactly one line, at level 2.
void expectRefusal(Trial& trial, const std::string& where, const vlt_underlying_data_t* settings,
                   const std::string& why) {
  Log log;
  const PluginLibrary library = load(trial);
  const Books books;
  void* const plugin = library.create(PLUGIN_NAME, CHAIN_NAME, settings, nullptr, nullptr);
  trial.holds(plugin == nullptr, where, "no codec", "a codec");
  trial.equal(where + ", log", lines_t{line(2, "Exception from create: " + why)}, log.take());
  books.expectBack(trial, where);
  library.destroy(plugin);
}

void expectRefusal(Trial& trial, const std::string& where, const data_t& settings,
                   const std::string& why) {
  expectRefusal(trial, where, settings.underlying(), why);
}

void defaults(Trial& trial) {
  expectEffect(trial, R"({"tenantId": "t1"})", {"ostrovia.devices", "ostrovia.measurements", "t1"});
}

void emptyTenant(Trial& trial) {
  expectEffect(trial, R"({"tenantId": ""})", {"ostrovia.devices", "ostrovia.measurements", ""});
}

void allKeys(Trial& trial) {
  expectEffect(trial,
               R"({"tenantId": "t1", "towardsHostChannelPrefix": "p.",
                   "measurementSplittingChannel": "m"})",
               {"p.ostrovia.devices", "m", "t1"});
}

void prefixKinds(Trial& trial) {
  const std::pair<const char*, const char*> rows[] = {
      {"-5", "-5"},     {"0.5", "0.5"},     {"1e20", "1e+20"},
      {"true", "true"}, {"false", "false"}, {R"("a.b%s")", "a.b%s"},
      {"null", ""},     {"[1]", ""},        {"{}", ""}};
  for (const auto& [setting, prefix] : rows) {
    const std::string json =
        std::string(R"({"tenantId": "t1", "towardsHostChannelPrefix": )") + setting + "}";
    expectEffect(trial, json.c_str(),
                 {std::string(prefix) + "ostrovia.devices", "ostrovia.measurements", "t1"});
  }
}

void channelKinds(Trial& trial) {
  for (const char* const setting : {"7", "1.5", "true", "null", "[]", "{}"}) {
    const std::string json =
        std::string(R"({"tenantId": "t1", "measurementSplittingChannel": )") + setting + "}";
    expectEffect(trial, json.c_str(), {"ostrovia.devices", "ostrovia.measurements", "t1"});
  }
  expectEffect(trial, R"({"tenantId": "t1", "measurementSplittingChannel": ""})",
               {"ostrovia.devices", "", "t1"});
}

void borrowedTexts(Trial& trial) {
  data_t settings = value("{}");
  set(settings, "tenantId", borrowed("t1"));
  set(settings, "towardsHostChannelPrefix", borrowed("p."));
  set(settings, "measurementSplittingChannel", borrowed("m"));
  expectEffect(trial, "borrowed texts", settings, {"p.ostrovia.devices", "m", "t1"});
}

void otherKeys(Trial& trial) {
  expectEffect(trial, R"({"tenantId": "t1", "TenantId": "t2", "logLevel": 9, "x": [{"y": null}]})",
               {"ostrovia.devices", "ostrovia.measurements", "t1"});
}

void missingTenant(Trial& trial) {
  const char* const why = R"(Key '"tenantId"' not found in Notifications2Codec)";
  expectRefusal(trial, "{}", value("{}"), why);
  expectRefusal(trial, "another key", value(R"({"towardsHostChannelPrefix": "p."})"), why);
  expectRefusal(trial, "a map without table", bare(VLT_TAG_MAP), why);
}

void emptyTenantValue(Trial& trial) {
  expectRefusal(trial, R"({"tenantId": null})", value(R"({"tenantId": null})"),
                R"(Key '"tenantId"' has an empty value in Notifications2Codec)");
}

std::vector<std::pair<const char*, data_t>> kindsThatAreNoText() {
  std::vector<std::pair<const char*, data_t>> kinds;
  kinds.emplace_back("boolean", value("true"));
  kinds.emplace_back("double", value("1.5"));
  kinds.emplace_back("integer", value("5"));
  kinds.emplace_back("decimal", decimal(1));
  kinds.emplace_back("list", value("[1]"));
  kinds.emplace_back("buffer", buffer("b"));
  kinds.emplace_back("custom", custom(1));
  return kinds;
}

void tenantKinds(Trial& trial) {
  for (auto& [kind, setting] : kindsThatAreNoText()) {
    data_t settings = value("{}");
    set(settings, "tenantId", std::move(setting));
    expectRefusal(
        trial, std::string("tenantId of kind ") + kind, settings,
        std::string("Incorrect type in get (you asked for string but it's actually ") + kind + ")");
  }
}

void mustBeAMap(Trial& trial) {
  for (const auto& [kind, settings] : kindsThatAreNoText()) {
    expectRefusal(
        trial, std::string("a configuration of kind ") + kind, settings,
        std::string("Incorrect type in get (you asked for map but it's actually ") + kind + ")");
  }
  expectRefusal(trial, "an empty value", data_t(), "Get from empty");
}

void nullTextChannel(Trial& trial) {
  data_t settings = value(R"({"tenantId": "t1"})");
  set(settings, "measurementSplittingChannel", bare(VLT_TAG_STRING));
  expectRefusal(trial, "a measurement channel without a text", settings,
                "Cannot use a null char* as a data_t value (consider using an empty data_t() "
                "instead)");
}

void silentRefusal(Trial& trial) {
  Log log(1);
  const PluginLibrary library = load(trial);
  const Codec codec(trial, library, value("{}"));
  trial.holds(!codec.made(), "{}", "no codec", "a codec");
  trial.equal("log at level 1", lines_t{}, log.take());
}

void leftUntouched(Trial& trial) {
  data_t settings = value(R"({"tenantId": "t1", "towardsHostChannelPrefix": 7, "x": [1, {}]})");
  set(settings, "measurementSplittingChannel", borrowed("m"));
  const std::string before = bytesOf(settings);
  const Books books;
  {
    const PluginLibrary library = load(trial);
    Codec codec(trial, library, settings);
    trial.holds(bytesOf(settings) == before, "after create", "the configuration as it was",
                "other bytes");
    codec.link();
    Message message = plainEvent("1");
    codec.towardsHost({&message, 1});
    codec.host.messages.clear();
  }
  trial.holds(bytesOf(settings) == before, "after the codec's life", "the configuration as it was",
              "other bytes");
  books.expectBack(trial, "after the codec's life");
}

void mayVanish(Trial& trial) {
  const Log log;
  const PluginLibrary library = load(trial);
  data_t settings = value(R"({"tenantId": "t1", "towardsHostChannelPrefix": "p."})");
  std::string name = PLUGIN_NAME;
  std::string chain = CHAIN_NAME;
  Codec codec(trial, library, settings, name.c_str(), chain.c_str());
  settings = bare(77); // frees the table; its place holds no map
  name.assign(name.size(), '?');
  chain.assign(chain.size(), '?');
  codec.link();
  std::vector<Message> batch;
  batch.push_back(plainEvent("1"));
  codec.towardsHost(batch);
  if (!trial.equal("events", 1, codec.host.messages.size())) return;
  const Message& event = codec.host.messages[0];
  trial.equal("tenantId", "t1", textAt(event.getPayload(), "tenantId"));
  trial.equal("vlt.channel", "p.ostrovia.devices", textAt(event.getMetadataMap(), "vlt.channel"));
}

constexpr check_t CONFIGURATION_CHECKS[] = {
    {"configuration.defaults", "with the tenant alone, the channels are the defaults", defaults},
    {"configuration.empty-tenant", "an empty tenant writes no tenantId", emptyTenant},
    {"configuration.all-keys",
     "prefix and tenant go where they belong, the measurement channel has no prefix", allKeys},
    {"configuration.prefix-kinds", "a number or boolean becomes a prefix, other kinds are ignored",
     prefixKinds},
    {"configuration.channel-kinds", "a measurement channel that is no string is ignored",
     channelKinds},
    {"configuration.borrowed-texts", "borrowed strings of the configuration are read like others",
     borrowedTexts},
    {"configuration.other-keys", "other keys are ignored, keys are compared with case", otherKeys},
    {"configuration.missing-tenant", "without tenantId: no codec, one line, no block",
     missingTenant},
    {"configuration.tenant-without-value", "a tenantId that is an empty value is refused",
     emptyTenantValue},
    {"configuration.tenant-kinds", "a tenantId of any kind but string is refused", tenantKinds},
    {"configuration.must-be-a-map", "a configuration of any kind but map is refused", mustBeAMap},
    {"configuration.channel-without-text", "a measurement channel that is a null string is refused",
     nullTextChannel},
    {"configuration.silent-below-level", "a refusal below the level is not logged", silentRefusal},
    {"configuration.left-untouched", "the caller's configuration stays the same, byte for byte",
     leftUntouched},
    {"configuration.may-vanish", "configuration and names may vanish when create has returned",
     mayVanish},
};

} // namespace

suite_t configurationChecks() { return CONFIGURATION_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
