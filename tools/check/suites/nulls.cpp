// Null where a host can pass it: a pointer, a name or a function. Null texts and tables are in the
// conformance files.
#include <bit>
#include <string>
#include <vector>

#include "tools/check/blocks.hpp"
#include "tools/check/check_fixture.hpp"
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
void expectOneFailureLine(CheckFixture& fixture, const char* call) {
  const lines_t lines = fixture.log.take();
  if (!fixture.trial.equal(std::string(call) + ", log lines", 1, lines.size())) return;
  const std::string beginning = line(2, std::string("Exception from ") + call + ": ");
  fixture.trial.equal(std::string(call) + ", log", beginning, lines[0].substr(0, beginning.size()));
}

void batchFunction(Trial& trial) {
  CheckFixture fixture(trial);
  trial.equal("setNextTowardsHost", 1, fixture.codec.setNextTowardsHost(nullptr, nullptr));
  expectOneFailureLine(fixture, "setNextTowardsHost");
  trial.equal("setNextTowardsTransport", 1,
              fixture.codec.setNextTowardsTransport(nullptr, nullptr));
  expectOneFailureLine(fixture, "setNextTowardsTransport");
  fixture.send(plainEvent("1"));
  trial.equal("batches at the previous link", 1, fixture.codec.host.calls.size());
}

void emptyRange(Trial& trial) {
  CheckFixture fixture(trial);
  trial.equal("sendBatchTowardsHost", 0, fixture.codec.towardsHost({}));
  trial.equal("sendBatchTowardsTransport", 0, fixture.codec.towardsTransport({}));
  trial.equal("batches at the host", 1, fixture.codec.host.calls.size());
  trial.equal("batches at the transport", 1, fixture.codec.transport.calls.size());
}

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a null handle leads nowhere
int null_handle_calls = 0;

void linkHandle(Trial& trial) {
  CheckFixture fixture(trial);
  fixture.codec.setNextTowardsHost(
      nullptr, [](void* handle, vlt_underlying_message_t*, vlt_underlying_message_t*) {
        if (handle == nullptr) ++null_handle_calls;
      });
  Message message = plainEvent("1");
  trial.equal("sendBatchTowardsHost", 0, fixture.codec.towardsHost({&message, 1}));
  trial.equal("calls with the null handle", 1, null_handle_calls);
}

// No host may rely on it, but what a plug-in keeps without looking into cannot break either.
void hostHandles(Trial& trial) {
  const PluginLibrary library = load(trial);
  const data_t settings = configured(trial);
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

const check_t NULLS_CHECKS[] = {
    {"nulls.plugin", "every call with a null plug-in does nothing and returns 1, destroy 0",
     ADVISED_ONLY, plugin},
    {"nulls.names", "null names read as empty ones", ADVISED_ONLY, names, Use::LOAD_CODEC},
    {"nulls.batch-function", "a null batch function is refused, and the link before it stays",
     ADVISED_ONLY, batchFunction},
    {"nulls.empty-range", "an empty range of null pointers reaches the link", "Nulls", emptyRange},
    {"nulls.link-handle", "a null handle is handed to the link like any other", "Nulls",
     linkHandle},
    {"nulls.host-handles", "the host's two handles are never read", "What the plug-in offers",
     hostHandles},
};

} // namespace

suite_t nullsChecks() { return NULLS_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
