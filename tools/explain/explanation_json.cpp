// {"at":"in.ndjson:1","kind":"events","outcome":"converted","unchanged":false,"fields":[
//   {"fate":"converted","from":[{"path":["payload","time"],"value":"2024…Z"}],
//                       "to":[{"path":["payload","firstOccurrenceTime"],"value":1715659331.0}]},
//   …],"log":[],"runs":57,"limited":false,"stable":true}
//
// A list or map as a whole has no "value". A dropped message has "faults", or, without a proven
// one, "suspects".
#include "ndjson/json_line.hpp"
#include "ndjson/json_text.hpp"
#include "ndjson/visible_text.hpp"
#include "tools/explain/explanation.hpp"

namespace com::velanto::connectivity::tools {

namespace {

std::string jsonOf(const path_t& path) {
  std::string json;
  appendJson(json, path);
  return json;
}

void writePlaces(JsonLine& line, const char* name, const std::vector<place_t>& places) {
  line.item(name).open('[');
  for (const place_t& place : places) {
    line.item(nullptr).open('{');
    line.item("path").raw(jsonOf(place.path));
    if (!place.json.empty()) line.item("value").raw(place.json);
    line.close('}');
  }
  line.close(']');
}

void writeRow(JsonLine& line, const row_t& row) {
  line.item(nullptr).open('{');
  line.item("fate").text(nameOf(row.fate));
  writePlaces(line, "from", row.from);
  writePlaces(line, "to", row.to);
  if (!row.with.empty()) writePlaces(line, "with", row.with);
  if (row.new_block) line.item("copied").raw("true");
  if (row.without != Without::SAME) line.item("without").text(nameOf(row.without));
  line.close('}');
}

void writeFaults(JsonLine& line, const char* name, const std::vector<faulty_place_t>& faults) {
  line.item(name).open('[');
  for (const faulty_place_t& fault : faults) {
    line.item(nullptr).open('{');
    line.item("path").raw(jsonOf(fault.path));
    line.item("missing").raw(fault.missing ? "true" : "false");
    if (!fault.found.empty()) line.item("value").raw(fault.found);
    if (!fault.mended.empty()) line.item("mended").raw(fault.mended);
    if (!fault.defect.empty()) line.item("defect").text(fault.defect);
    line.close('}');
  }
  line.close(']');
}

void writeLog(JsonLine& line, const record_t& record) {
  line.item("log").open('[');
  for (const log_line_t& entry : record.log) {
    line.item(nullptr).open('{');
    line.item("level").raw(std::to_string(entry.level));
    line.item("text").text(entry.text);
    line.close('}');
  }
  line.close(']');
}

} // namespace

std::string explanationJson(const record_t& record, const explanation_t& explanation) {
  JsonLine line;
  line.open('{');
  line.item("at").text(record.place());
  line.item("kind").text(nameOf(record.kind));
  line.item("outcome").text(nameOf(record.outcome));
  if (record.outcome == Outcome::MALFORMED) {
    line.item("reason").text(record.malformed);
    line.close('}');
    return std::move(line).take();
  }
  line.item("unchanged").raw(explanation.passed ? "true" : "false");
  line.item("fields").open('[');
  for (const row_t& row : explanation.rows) writeRow(line, row);
  line.close(']');
  if (record.outcome == Outcome::DROPPED) {
    writeFaults(line, "faults", explanation.blame.faults);
    writeFaults(line, "suspects", explanation.blame.suspects);
  }
  writeLog(line, record);
  line.item("runs").number(explanation.runs);
  line.item("limited").raw(explanation.limited ? "true" : "false");
  if (!explanation.stopped.empty()) line.item("stopped").text(explanation.stopped);
  line.item("stable").raw(explanation.stable ? "true" : "false");
  line.close('}');
  return visibleLines(std::move(line).take());
}

} // namespace com::velanto::connectivity::tools
