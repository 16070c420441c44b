// Explanations by the real plug-in: each leaf of the message and of its event is told of once. With
// the faults of a dropped message mended, it comes out. The texts obey no control character.
//
//   input   the line of a message
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/block_count.hpp"
#include "fuzz/finding.hpp"
#include "tests/tools/explain/accounting.hpp"
#include "tools/explain/inquiry.hpp"

namespace fuzz = com::velanto::connectivity::fuzz;
namespace test = com::velanto::connectivity::test;
namespace tools = com::velanto::connectivity::tools;
using com::velanto::connectivity::data_t;
using com::velanto::connectivity::JsonReader;
using com::velanto::connectivity::MalformedJson;
using com::velanto::connectivity::map_t;
using com::velanto::connectivity::Message;

namespace {

constexpr std::size_t MOST_VALUES = 500; // of the million that the tool looks at

data_t settings() {
  map_t map;
  map[data_t("tenantId")] = data_t("t4100");
  return map;
}

// The plug-in in a chain for the run, and in one for the explanations.
struct chains_t {
  tools::LogCapture capture{tools::LogCapture::Unclaimed::DROPPED};
  tools::PluginLibrary library{VLT_FUZZ_PLUGIN};
  std::vector<tools::log_line_t> log;
  tools::ReplayChain run{library, settings(), tools::Direction::TOWARDS_HOST, log};
  tools::Inquiry inquiry{library, settings(), tools::Direction::TOWARDS_HOST};
  const std::int64_t blocks = inquiry.lostBlocks(); // which its plug-in gives back at its end
};

chains_t& chains() {
  static chains_t the_chains;
  return the_chains;
}

// The result is the caller's: the chain would keep it until the next one.
tools::call_result_t send(Message message) { return std::move(chains().run.send({&message, 1})); }

void checkText(const std::string& text) {
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    fuzz::require(byte == '\n' || (byte >= ' ' && byte != 0x7F), "no control character is shown");
  }
}

void checkMending(JsonReader& reader, const Message& message, const tools::blame_t& blame) {
  if (blame.faults.empty()) return;
  Message mended = tools::copyOf(message);
  for (const tools::faulty_place_t& fault : blame.faults) {
    tools::apply(mended, {fault.path, reader.parseValue(fault.mended)});
  }
  fuzz::require(send(std::move(mended)).outputs.size() == 1, "a mended message comes out");
}

void check(JsonReader& reader, const std::string& line, const Message& message) {
  static const std::string FILE = "in.ndjson";
  tools::call_result_t result = send(tools::copyOf(message));
  tools::record_t record;
  record.file = &FILE;
  record.line = line;
  record.recorded = com::velanto::connectivity::recordedIn(line);
  record.outputs = std::move(result.outputs);
  record.log = std::move(result.log);
  if (!record.outputs.empty()) record.outcome = tools::Outcome::CONVERTED;

  const tools::explanation_t told = chains().inquiry.explain(record, MOST_VALUES);
  fuzz::require(chains().inquiry.lostBlocks() == chains().blocks, "explaining loses no block");
  fuzz::require(told.stopped.empty() && told.stable, "a short message is explained");
  fuzz::requireNone(
      test::unaccounted(tools::Trace(message), tools::Trace(std::span(record.outputs)), told.rows),
      "told of once");
  checkText(tools::explanationText(record, told, false));
  static_cast<void>(reader.parseValue(tools::explanationJson(record, told)));
  // Values of a recorded line may have no JSON by which to mend them.
  if (!record.recorded) checkMending(reader, message, told.blame);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  chains(); // with the plug-in's counters, before the fuzzer looks for them
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::BlockCount no_block_is_left;
  static JsonReader reader;
  const std::string line(reinterpret_cast<const char*>(data), size);
  std::optional<Message> message;
  try {
    message = reader.parseMessage(line);
  } catch (const MalformedJson& e) {
    fuzz::requireReason(e.what());
    return 0;
  }
  check(reader, line, *message);
  return 0;
}
