// A recorder changes nothing: each batch reaches the next link as it came, in its own array and in
// one call, with every byte as before, in both directions.
#include <string>
#include <vector>

#include "host/storage.h"
#include "ndjson/json_reader.hpp"
#include "standin/standin.h"
#include "tools/check/check_fixture.hpp"
#include "tools/check/conformance/case.hpp"
#include "tools/check/examples.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

void expectPasses(Trial& trial, const std::string& where, bool towards_host, Codec& recorder,
                  std::vector<Message>& batch) {
  std::vector<std::string> before;
  before.reserve(batch.size());
  for (const Message& message : batch) before.push_back(bytesOf(message));
  recorder.host.calls.clear();
  recorder.transport.calls.clear();
  trial.equal(where + ", result", 0,
              towards_host ? recorder.towardsHost(batch) : recorder.towardsTransport(batch));
  const Link& next = towards_host ? recorder.host : recorder.transport;
  const Link& other = towards_host ? recorder.transport : recorder.host;
  trial.equal(where + ", batches at the other link", 0, other.calls.size());
  if (!trial.equal(where + ", batches at the next link", 1, next.calls.size())) return;
  const auto* const start = reinterpret_cast<const Message*>(next.calls[0].start);
  const auto* const end = reinterpret_cast<const Message*>(next.calls[0].end);
  trial.holds(start == batch.data() && end == batch.data() + batch.size(), where + ", range",
              "the batch's own array", "another range");
  for (std::size_t i = 0; i < batch.size(); ++i) {
    trial.holds(bytesOf(batch[i]) == before[i], where + ", message " + std::to_string(i + 1),
                "the same bytes as before", "other bytes");
  }
}

void expectPasses(Trial& trial, const std::string& where, Codec& recorder,
                  std::vector<Message>& batch) {
  expectPasses(trial, where + " towards the host", true, recorder, batch);
  expectPasses(trial, where + " towards the transport", false, recorder, batch);
}

// A recorder at work, whose links leave the messages in the batch.
struct Passage : CheckFixture {
  explicit Passage(Trial& trial_of) : CheckFixture(trial_of) {
    codec.host.moves_out = false;
    codec.transport.moves_out = false;
    codec.start();
    codec.hostReady();
  }
};

void everyCase(Trial& trial) {
  Passage passage(trial);
  JsonReader reader;
  for (const embedded_t& line : embeddedLines()) {
    case_t played = readCase(reader.parseValue(line.text));
    expectPasses(trial, std::string(line.file) + " " + played.name, passage.codec, played.in);
  }
  passage.expectLog("all cases", {});
  trial.equal("standard output and error", "", trial.printed());
}

data_t withDeletedSlots() {
  data_t fields = value(R"({"a": 1, "b": [2], "c": {"d": "e"}})");
  auto& table = fields.get<map_t>();
  for (const char* const key : {"a", "c"}) table.erase(table.find(data_t(key)));
  return fields;
}

void oddValues(Trial& trial) {
  constexpr std::uint32_t NEWER = 77;
  Passage passage(trial);
  std::vector<Message> batch;
  batch.emplace_back();
  batch.emplace_back(withDeletedSlots(), std::move(withDeletedSlots().get<map_t>()));
  batch.emplace_back(bare(NEWER));
  for (std::uint32_t tag = VLT_TAG_STRING; tag <= VLT_TAG_BORROWED_STRING; ++tag) {
    batch.emplace_back(bare(tag)); // with a null block or string
  }
  batch.emplace_back(buffer("\xff"));
  batch.emplace_back(custom(7));
  batch.emplace_back(decimal(7));
  batch.push_back(notification(EVENT_PATH, borrowed("\xff")));
  batch.back().getMetadataMap()[bare(NEWER)] = bare(NEWER);
  expectPasses(trial, "odd values", passage.codec, batch);
  std::vector<Message> none;
  expectPasses(trial, "no messages", passage.codec, none);
}

// A host calls from its own thread; a report of a recorder's thread may come at any time.
void callsNoHost(Trial& trial) {
  Passage passage(trial);
  std::vector<Message> batch;
  for (const line_t& example : exampleLines()) batch.push_back(notificationOf(example));
  standin_reset_calls();
  for (int i = 0; i < 100; ++i) {
    passage.codec.towardsHost(batch);
    passage.codec.towardsTransport(batch);
  }
  for (const auto& [function, name] : {std::pair{STANDIN_GET_LOG_LEVEL, "vlt_get_log_level"},
                                       {STANDIN_LOG_AT, "vlt_log_at"},
                                       {STANDIN_COPY_DATA, "vlt_copy_data"},
                                       {STANDIN_DATA_TO_STRING, "vlt_data_to_string"},
                                       {STANDIN_FREE_VECTOR, "vlt_free_vector"}}) {
    trial.equal(std::string("calls of ") + name, 0, standin_calls(function));
  }
  trial.holds(standin_calls(STANDIN_SET_USER_STATUS_MAP) <= 10, "calls of vlt_set_user_status_map",
              "one a second", std::to_string(standin_calls(STANDIN_SET_USER_STATUS_MAP)));
}

const check_t PASSING_CHECKS[] = {
    {"passing.every-case", "every message of the conformance files passes, byte for byte",
     "Recorders", everyCase, Use::LOAD_RECORDER},
    {"passing.odd-values", "null payloads, deleted slots and tags of a newer host pass",
     "Recorders", oddValues, Use::LOAD_RECORDER},
    {"passing.calls-no-host", "a batch makes no call of a host function", ADVISED_ONLY, callsNoHost,
     Use::LOAD_RECORDER},
};

} // namespace

suite_t passingChecks() { return PASSING_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
