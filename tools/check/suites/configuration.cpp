// The configuration and the names belong to the caller. The effects of the settings are in the
// conformance files.
#include <string>
#include <vector>

#include "tools/check/blocks.hpp"
#include "tools/check/check_fixture.hpp"
#include "tools/check/examples.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

void leftUntouched(Trial& trial) {
  data_t settings =
      configured(trial, R"({"tenantId": "t1", "towardsHostChannelPrefix": 7, "x": [1, {}]})");
  set(settings, "measurementSplittingChannel", borrowed("m"));
  const std::string before = bytesOf(settings);
  const BlockBalance balance;
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
  balance.expectBack(trial, "after the codec's life");
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

const check_t CONFIGURATION_CHECKS[] = {
    {"configuration.left-untouched", "the caller's configuration stays the same, byte for byte",
     "Who owns what", leftUntouched},
    {"configuration.may-vanish", "configuration and names may vanish when create has returned",
     "Who owns what", mayVanish, Use::LOAD_CODEC},
};

} // namespace

suite_t configurationChecks() { return CONFIGURATION_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
