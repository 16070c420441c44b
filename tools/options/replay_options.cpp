#include "tools/options/replay_options.hpp"

#include <array>

#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::array EXAMPLES = {
    example_row_t{"ostrovia-replay recorded.ndjson", "Which events will my rules get?"},
    example_row_t{"ostrovia-replay --strict recorded.ndjson > events.ndjson",
                  "Fail when a message is dropped"},
    example_row_t{"gzip -c recorded.ndjson | ostrovia-replay --tenant-id t1 --log-level 6 -",
                  "Compressed, from a pipe, with the trace of every message"},
    example_row_t{"ostrovia-replay --summary --dropped lost.ndjson recorded.ndjson > seen",
                  "Why did messages vanish? Which ones?"},
    example_row_t{"ostrovia-replay --explain recorded.ndjson", "What became of every field?"},
    example_row_t{"ostrovia-replay --expect-events rec/after rec/before > events.ndjson",
                  "Would this build do the same as the one that was recorded?"},
    example_row_t{"ostrovia-replay --against ./next.so recorded.ndjson > events.ndjson",
                  "Will the next build of the plug-in change anything?"},
};

constexpr const char* INTRODUCTION =
    "\n"
    "Sends recorded messages through the plug-in and prints the ones that reach the\n"
    "host. Both are lines of JSON:\n"
    "\n"
    "  {\"metadata\": {\"pulsarPath\": \"t1/sub/events/7\"}, \"payload\": {...}}\n"
    "\n"
    "Usage: ostrovia-replay [OPTIONS] [FILES...]\n"
    "\n"
    "Without FILES, or for -, it reads standard input. A recording is its FOLDER,\n"
    "or FOLDER/NAME when the folder has several.\n";

option_group_t pluginOptions(ReplayOptions& options) {
  return {
      "The plug-in and its configuration",
      {{"--plugin", "PATH", "plug-in library; default: the one that came with this program",
        &options.plugin_path},
       {"--config", "FILE",
        "configuration of the codec as YAML; the options below replace single keys of it",
        &options.config},
       {"--check-config", "",
        "create the codec with --config as a host would and name wrong and doubtful entries",
        &options.check_config},
       {"--tenant-id", "TEXT", "tenant in every event; default: none", &options.tenant_id},
       {"--channel-prefix", "TEXT", "prefix of the channel of all events but measurements",
        &options.channel_prefix},
       {"--measurement-channel", "TEXT", "channel of measurements", &options.measurement_channel}}};
}

option_group_t runOptions(ReplayOptions& options) {
  return {
      "The run",
      {{"--batch-size", "COUNT",
        "messages that the plug-in gets in one call; default: 1, so that each log line belongs to "
        "its message",
        &options.batch_size},
       {"--repeat", "COUNT", "read all input so many times; default: 1", &options.repeat},
       {"--threads", "COUNT",
        "chains, each with a codec and a thread of its own; the output keeps the order of the "
        "input; default: 1, at most 1024",
        &options.threads},
       {"--direction", "host|transport",
        "side that gets the messages; default: host; recorded messages of the other direction are "
        "left out",
        &options.direction},
       {"--as-recorded", "",
        "send recorded messages in the batches and directions of the recording",
        &options.as_recorded},
       {"--follow", "",
        "wait for more at the end of the last of FILES, also for the next file of a recording, "
        "until Ctrl-C",
        &options.follow},
       {"--log-level", "LEVEL",
        "log on standard error: 2 failures of the plug-in, 3 also dropped messages, 6 also "
        "every message; default: 3",
        &options.log_level},
       {"--log-format", "plain|json",
        "form of the log and of malformed lines on standard error; default: plain, FILE:LINE "
        "before each",
        &options.log_format},
       {"--max-line", "MIB",
        "longest line of input, in MiB, of compressed input when it is unpacked; a longer one is "
        "malformed; default: 64",
        &options.max_line},
       {"--strict", "", "exit with status 1 when a message was dropped", &options.strict}}};
}

option_group_t outputOptions(ReplayOptions& options) {
  return {
      "Output",
      {{"--summary", "[=text|json]",
        "at the end, on standard error: kinds and their outcomes, reasons of drops, channels, "
        "times",
        &options.summary},
       {"--merge-summaries", "",
        "instead of a run: print the one summary, as JSON, of a run over all parts of an input; "
        "FILES have the --summary=json of each part",
        &options.merge_summaries},
       {"--explain", "[=text|json]",
        "instead of the events: the fate of every field, message by message", &options.explain},
       {"--report", "FILE",
        "write a page about the run to FILE, for a browser: what came in, why messages were "
        "dropped, what changed",
        &options.report},
       {"--dropped", "FILE",
        "write the messages that did not reach the host to FILE, as lines to correct and read "
        "again",
        &options.dropped},
       {"--redact", "FIELDS",
        "fields to hide in the copy of the input that --redacted names: paths with commas "
        "between them, all-texts, all-times",
        &options.redact},
       {"--redacted", "FILE", "write the copy to FILE; every message of it has the same outcome",
        &options.redacted},
       {"--redact-key", "FILE",
        "take the key of the stand-ins from FILE, so that other copies get the same; default: "
        "a new key that is never written",
        &options.redact_key},
       {"--quiet", "",
        "neither progress nor the closing line, and --log-level 2 unless another is given",
        &options.quiet}}};
}

option_group_t comparingOptions(ReplayOptions& options) {
  return {
      "Comparing runs",
      {{"--record", "FILE", "write the results of each message to FILE, a golden file",
        &options.record},
       {"--expect", "FILE", "compare the run with a golden file and show the differences",
        &options.expect},
       {"--expect-events", "RECORDING",
        "compare the run with the events that were recorded after the codec, batch by batch, and "
        "show the differences",
        &options.expect_events},
       {"--against", "PATH",
        "run another build of the plug-in next to this one and show each message whose results "
        "differ",
        &options.against},
       {"--suite", "FOLDER", "run every NAME.ndjson in FOLDER against its NAME.golden",
        &options.suite},
       {"--update", "", "with --suite: make the golden files again instead", &options.update},
       {"--junit", "FILE", "with --suite: write a report in the form of JUnit", &options.junit}}};
}

} // namespace

tool_t replayTool(ReplayOptions& options) {
  return {REPLAY_NAME,
          EXAMPLES,
          INTRODUCTION,
          "FILES",
          &options.paths,
          {pluginOptions(options), runOptions(options), outputOptions(options),
           comparingOptions(options), ABOUT_THE_TOOL},
          "Exit status, the largest that applies",
          EXIT_STATUSES};
}

} // namespace com::velanto::connectivity::tools
