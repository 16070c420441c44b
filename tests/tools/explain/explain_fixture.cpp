#include "tests/tools/explain/explain_fixture.hpp"

#include <exception>

#include "tests/tools/explain/accounting.hpp"
#include "tools/explain/silence.hpp"

namespace com::velanto::connectivity::test {

namespace {

std::string pathsOf(const std::vector<tools::place_t>& places) {
  std::string text;
  for (const tools::place_t& place : places) {
    text += (text.empty() ? "" : ", ") + tools::textOf(place.path);
  }
  return text;
}

} // namespace

codec_t onPayload(const std::function<void(map_t& payload)>& change) {
  return [change](Message& message) {
    change(message.getPayload().get<map_t>());
    return true;
  };
}

data_t taken(map_t& map, const char* key) { return extracted(map, data_t(key)).value; }

tools::call_result_t ExplainFixture::run(Message& message, const codec_t& codec) {
  tools::call_result_t result;
  try {
    if (codec(message)) result.outputs.push_back(std::move(message));
  } catch (const std::exception& e) {
    result.log.push_back({3, e.what()});
  }
  return result;
}

tools::explanation_t ExplainFixture::explainedLine(const std::string& line, const codec_t& codec) {
  const tools::Silence silence; // a codec may read the changed value as the wrong kind
  Message message = reader_.parseMessage(line);
  const Message original = tools::copyOf(message);
  const tools::Trace before(message);
  tools::call_result_t result = run(message, codec);
  record_ = {};
  record_.file = &file_;
  record_.line_number = 1;
  record_.line = line;
  record_.outputs = std::move(result.outputs);
  record_.log = std::move(result.log);
  if (!record_.outputs.empty()) record_.outcome = tools::Outcome::PASSED;
  tools::Probe probe(
      original, [&](Message& changed) { return run(changed, codec); }, most_values_);
  tools::explanation_t explanation = tools::explain(record_, probe);
  EXPECT_TRUE(explanation.stable);
  EXPECT_EQ(unaccounted(before, tools::Trace(std::span(record_.outputs)), explanation.rows), "");
  return explanation;
}

tools::explanation_t ExplainFixture::explained(const std::string& payload, const codec_t& codec) {
  return explainedLine("{\"payload\":" + payload + "}", codec);
}

std::string ExplainFixture::fates(const std::string& payload, const codec_t& codec) {
  return textOf(explained(payload, codec).rows);
}

std::string textOf(const std::vector<tools::row_t>& rows) {
  std::string text;
  for (const tools::row_t& row : rows) {
    text += tools::nameOf(row.fate);
    if (!row.from.empty()) text += " " + pathsOf(row.from);
    const bool in_place =
        row.from.size() == 1 && row.to.size() == 1 && row.from.front().path == row.to.front().path;
    if (!row.to.empty() && !in_place) {
      text += (row.from.empty() && row.with.empty() ? " " : " → ") + pathsOf(row.to);
    }
    if (!row.with.empty()) text += " ⇐ " + pathsOf(row.with);
    if (row.new_block) text += " (copied)";
    if (row.without != tools::Without::SAME) {
      text += std::string(" (without: ") + tools::nameOf(row.without) + ")";
    }
    text += '\n';
  }
  return text;
}

} // namespace com::velanto::connectivity::test
