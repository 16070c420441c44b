// Null where a host can pass it: a pointer, a name, a function, a text or a table.
#include <bit>
#include <string>
#include <vector>

#include "tools/check/blocks.hpp"
#include "tools/check/chain.hpp"
#include "tools/check/examples.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

void plugin(Trial& trial) {
  Log log;
  const PluginLibrary library = load(trial);
  Link link;
  trial.equal("destroy", 0, library.destroy(nullptr));
  trial.equal("start", 1, library.start(nullptr));
  trial.equal("hostReady", 1, library.hostReady(nullptr));
  trial.equal("shutdown", 1, library.shutdown(nullptr));
  trial.equal("setNextTowardsHost", 1, library.setNextTowardsHost(nullptr, &link, Link::take));
  trial.equal("setNextTowardsTransport", 1,
              library.setNextTowardsTransport(nullptr, &link, Link::take));
  trial.equal("sendBatchTowardsHost", 1, library.sendBatchTowardsHost(nullptr, nullptr, nullptr));
  trial.equal("sendBatchTowardsTransport", 1,
              library.sendBatchTowardsTransport(nullptr, nullptr, nullptr));
  trial.equal("batches at the link", 0, link.calls.size());
  trial.equal("log", lines_t{}, log.take());
}

void configuration(Trial& trial) {
  Log log;
  const PluginLibrary library = load(trial);
  void* const made = library.create(PLUGIN_NAME, CHAIN_NAME, nullptr, nullptr, nullptr);
  trial.holds(made == nullptr, "create", "no codec", "a codec");
  trial.equal("log", lines_t{line(2, "Exception from create: Get from empty")}, log.take());
}

void names(Trial& trial) {
  Log log;
  const PluginLibrary library = load(trial);
  Codec codec(trial, library, value(R"({"tenantId": ""})"), nullptr, nullptr);
  codec.link();
  Message message = plainEvent("1", UNKNOWN_PATH);
  trial.equal("sendBatchTowardsHost", 0, codec.towardsHost({&message, 1}));
  trial.equal("log",
              lines_t{"3 connectivity.. <connectivity..> Error when transforming message towards "
                      "host ('id' = '1'): Unrecognised Pulsar message type: 'inventory'"},
              log.take());
  const Codec refused(trial, library, value("{}"), nullptr, nullptr);
  trial.equal("log of a refusal",
              lines_t{"2 connectivity.. <connectivity..> Exception from create: Key '\"tenantId\"' "
                      "not found in Notifications2Codec"},
              log.take());
}

// One line at level 2 that names the call; the wording of the reason is the library's.
void expectOneFailureLine(Chain& chain, const char* call) {
  const lines_t lines = chain.log.take();
  if (!chain.trial.equal(std::string(call) + ", log lines", 1, lines.size())) return;
  const std::string beginning = line(2, std::string("Exception from ") + call + ": ");
  chain.trial.equal(std::string(call) + ", log", beginning, lines[0].substr(0, beginning.size()));
}

void batchFunction(Trial& trial) {
  Chain chain(trial);
  trial.equal("setNextTowardsHost", 1, chain.codec.setNextTowardsHost(nullptr, nullptr));
  expectOneFailureLine(chain, "setNextTowardsHost");
  trial.equal("setNextTowardsTransport", 1, chain.codec.setNextTowardsTransport(nullptr, nullptr));
  expectOneFailureLine(chain, "setNextTowardsTransport");
  chain.send(plainEvent("1"));
  trial.equal("batches at the previous link", 1, chain.codec.host.calls.size());
}

void emptyRange(Trial& trial) {
  Chain chain(trial);
  trial.equal("sendBatchTowardsHost", 0, chain.codec.towardsHost({}));
  trial.equal("sendBatchTowardsTransport", 0, chain.codec.towardsTransport({}));
  trial.equal("batches at the host", 1, chain.codec.host.calls.size());
  trial.equal("batches at the transport", 1, chain.codec.transport.calls.size());
}

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a null handle leads nowhere
int null_handle_calls = 0;

void linkHandle(Trial& trial) {
  Chain chain(trial);
  chain.codec.setNextTowardsHost(
      nullptr, [](void* handle, vlt_underlying_message_t*, vlt_underlying_message_t*) {
        if (handle == nullptr) ++null_handle_calls;
      });
  Message message = plainEvent("1");
  trial.equal("sendBatchTowardsHost", 0, chain.codec.towardsHost({&message, 1}));
  trial.equal("calls with the null handle", 1, null_handle_calls);
}

// No host may rely on it, but what a plug-in keeps without looking into cannot break either.
void hostHandles(Trial& trial) {
  const PluginLibrary library = load(trial);
  const data_t settings = value(R"({"tenantId": "t1"})");
  void* const made = library.create(PLUGIN_NAME, CHAIN_NAME, settings.underlying(),
                                    std::bit_cast<void*>(std::uintptr_t{8}),
                                    std::bit_cast<void*>(std::uintptr_t{16}));
  if (!trial.holds(made != nullptr, "create", "a codec", "none")) return;
  Message message = plainEvent("1");
  trial.equal("start", 0, library.start(made));
  trial.equal("sendBatchTowardsHost", 0,
              library.sendBatchTowardsHost(made, &message, &message + 1));
  trial.equal("shutdown", 0, library.shutdown(made));
  trial.equal("destroy", 0, library.destroy(made));
}

void tables(Trial& trial) {
  Chain chain(trial);
  std::vector<Message> batch;
  batch.emplace_back(value("1")); // no metadata
  batch.push_back(notification(EVENT_PATH, bare(VLT_TAG_MAP)));
  batch.push_back(plainEvent("3"));
  set(batch[2].getPayload(), "list", bare(VLT_TAG_LIST));
  set(batch[2].getPayload(), "map", bare(VLT_TAG_MAP));
  set(batch[2].getPayload(), "buffer", bare(VLT_TAG_BUFFER));
  const std::vector<Message> kept = chain.send(std::move(batch));
  if (!trial.equal("messages at the host", 2, kept.size())) return;
  for (const char* const key : {"list", "map", "buffer"}) {
    const data_t* const found = find(kept[1].getPayload(), key);
    trial.holds(found != nullptr, "payload", std::string("an entry ") + key, "none");
  }
  chain.expectLog("a payload without table",
                  {dropped(": Required key 'source' missing from message payload")});
}

void texts(Trial& trial) {
  Chain chain(trial);
  std::vector<Message> batch;
  batch.push_back(plainEvent("1"));
  set(batch[0].getPayload(), "text", bare(VLT_TAG_STRING));
  set(batch[0].getPayload(), "creationTime", bare(VLT_TAG_BORROWED_STRING));
  batch.push_back(plainEvent("2"));
  set(batch[1].getPayload(), "time", bare(VLT_TAG_STRING));
  batch.push_back(plainEvent("3"));
  batch[2].getMetadataMap()[data_t("pulsarPath")] = bare(VLT_TAG_STRING);
  batch.push_back(plainEvent("4", UNKNOWN_PATH));
  set(batch[3].getPayload(), "id", bare(VLT_TAG_STRING));
  const std::vector<Message> kept = chain.send(std::move(batch));
  trial.equal("messages at the host", 1, kept.size());
  chain.expectLog("null strings",
                  {dropped(" ('id' = '2'): Error parsing timestamp '' in key 'time'"),
                   dropped(" ('id' = '3'): Unrecognised Pulsar message type: ''"),
                   dropped(" ('id' = ''): Unrecognised Pulsar message type: 'inventory'")});
}

constexpr check_t NULLS_CHECKS[] = {
    {"nulls.plugin", "every call with a null plug-in does nothing and returns 1, destroy 0",
     plugin},
    {"nulls.configuration", "a null configuration is refused like an empty value", configuration},
    {"nulls.names", "null names read as empty ones", names},
    {"nulls.batch-function", "a null batch function is refused, and the link before it stays",
     batchFunction},
    {"nulls.empty-range", "an empty range of null pointers reaches the link", emptyRange},
    {"nulls.link-handle", "a null handle is handed to the link like any other", linkHandle},
    {"nulls.host-handles", "the host's two handles are never read", hostHandles},
    {"nulls.tables", "maps, lists and buffers without a block are empty ones", tables},
    {"nulls.texts", "null strings read as empty ones", texts},
};

} // namespace

suite_t nullsChecks() { return NULLS_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
