// Explains messages as if a plug-in of a few lines had them.
#ifndef VLT_TESTS_TOOLS_EXPLAIN_EXPLAIN_FIXTURE_HPP
#define VLT_TESTS_TOOLS_EXPLAIN_EXPLAIN_FIXTURE_HPP

#include <functional>
#include <string>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"
#include "tools/explain/explanation.hpp"
#include "tools/explain/probe.hpp"

namespace com::velanto::connectivity::test {

// Changes the message into its outcome. False: it does not come out. Logs an exception, and then
// the message does not come out either.
using codec_t = std::function<bool(Message& message)>;

// A codec that changes the payload, which is a map, and drops nothing.
codec_t onPayload(const std::function<void(map_t& payload)>& change);

// Removes and returns the value under `key`; an empty value without one.
data_t taken(map_t& map, const char* key);

class ExplainFixture : public HostFixture {
 protected:
  // The payload of a message without metadata as JSON, and its explanation.
  tools::explanation_t explained(const std::string& payload, const codec_t& codec);
  // The same for a whole line.
  tools::explanation_t explainedLine(const std::string& line, const codec_t& codec);

  // The rows of it, one line each: "renamed a → b", "converted a, b → c", "added c", "copied a ⇒ b"
  // and so on; after ⇐ the fields that a row refers to.
  std::string fates(const std::string& payload, const codec_t& codec);

  // The bound of the values to look at for a message.
  std::size_t most_values_ = tools::Probe::MOST_VALUES;
  // Of the last message explained.
  tools::record_t record_;
  tools::call_result_t run(Message& message, const codec_t& codec);

 private:
  const std::string file_ = "in";
  JsonReader reader_;
};

std::string textOf(const std::vector<tools::row_t>& rows);

} // namespace com::velanto::connectivity::test

#endif
