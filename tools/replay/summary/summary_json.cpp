// The summary as one line of JSON, in the form of docs/replay-summary.schema.json.
#include "ndjson/json_line.hpp"
#include "tools/replay/summary/recordings.hpp"
#include "tools/replay/summary/summary.hpp"

namespace com::velanto::connectivity::tools {

namespace {

double microseconds(std::chrono::nanoseconds time) {
  return static_cast<double>(time.count()) / 1e3;
}

void writeKinds(JsonLine& line, const Summary& summary) {
  line.item("kinds").open('{');
  for (std::size_t i = 0; i < KINDS; ++i) {
    const Kind kind = static_cast<Kind>(i);
    line.item(nameOf(kind)).open('{');
    for (const Outcome outcome : {Outcome::CONVERTED, Outcome::PASSED, Outcome::DROPPED}) {
      line.item(nameOf(outcome)).number(summary.count(kind, outcome));
    }
    line.close('}');
  }
  line.close('}');
}

void writeReasons(JsonLine& line, const Summary& summary) {
  line.item("reasons").open('[');
  for (const counted_reason_t* reason : summary.reasons()) {
    line.item(nullptr).open('{');
    line.item("reason").text(reason->code);
    line.item("key").text(reason->key);
    line.item("count").number(reason->count);
    line.item("first").text(reason->first);
    line.item("number").number(reason->first_number);
    line.close('}');
  }
  line.close(']');
}

void writeTimes(JsonLine& line, const Summary& summary, const run_figures_t& run) {
  const double seconds = std::chrono::duration<double>(run.elapsed).count();
  line.item("seconds").real(seconds);
  line.item("messages_per_second").real(seconds > 0 ? static_cast<double>(run.read) / seconds : 0);
  line.item("batches").open('{');
  line.item("count").number(summary.batches().count());
  line.item("median_us").real(microseconds(summary.batches().quantile(0.5)));
  line.item("p99_us").real(microseconds(summary.batches().quantile(0.99)));
  line.item("classes").open('[');
  for (const auto& [bound, count] : summary.batches().classes()) {
    line.item(nullptr).open('[');
    line.item(nullptr).number(static_cast<std::uint64_t>(bound.count()));
    line.item(nullptr).number(count);
    line.close(']');
  }
  line.close(']');
  line.close('}');
}

void writeBuild(JsonLine& line, const char* name, const file_identity_t& file) {
  const auto write = [&line](const char* member, const std::string& text) {
    line.item(member);
    text.empty() ? line.raw("null") : line.text(text);
  };
  line.item(name).open('{');
  line.item("path").text(file.path);
  line.item("size").number(file.size);
  line.item("sha256").text(file.sha256);
  write("build_id", file.build_id);
  write("build", file.build_name);
  line.close('}');
}

void writeBuilds(JsonLine& line, const builds_t& builds) {
  line.item("tool").text(builds.tool);
  writeBuild(line, "plugin", builds.plugin);
  if (builds.against) writeBuild(line, "against", *builds.against);
}

void writePrinted(JsonLine& line, const PrintedLines& printed) {
  line.item("printed").open('[');
  for (const printed_line_t& each : printed.lines()) {
    line.item(nullptr).open('{');
    line.item("text").text(each.text);
    line.item("count").number(each.count);
    if (!each.first.empty()) line.item("first").text(each.first);
    line.close('}');
  }
  line.close(']');
  line.item("printed_otherwise").number(printed.others());
}

} // namespace

std::string summaryJson(const Summary& summary, const run_figures_t& run,
                        const PrintedLines& printed) {
  JsonLine line;
  line.open('{');
  line.item("version").number(SUMMARY_VERSION);
  line.item("complete").raw(run.complete ? "true" : "false");
  line.item("read").number(run.read);
  line.item("reached").number(run.out);
  for (const Outcome outcome :
       {Outcome::CONVERTED, Outcome::PASSED, Outcome::DROPPED, Outcome::MALFORMED}) {
    line.item(nameOf(outcome)).number(summary.count(outcome));
  }
  line.item("blocks_live").raw(run.blocks ? std::to_string(*run.blocks) : "null");
  writeKinds(line, summary);
  writeReasons(line, summary);
  line.item("channels").open('{');
  for (const auto& [channel, count] : summary.channels()) line.item(channel.c_str()).number(count);
  line.close('}');
  writePrinted(line, printed);
  writeTimes(line, summary, run);
  writeBuilds(line, summary.builds());
  writeRecordings(line, run.recordings, run.pairing);
  line.close('}');
  return std::move(line).take();
}

} // namespace com::velanto::connectivity::tools
