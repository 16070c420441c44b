#include "tools/replay/command_line.hpp"

#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ndjson/visible_text.hpp"
#include "tools/host/plugin_library.hpp"
#include "tools/host/standard_error_capture.hpp"
#include "tools/options/parser.hpp"
#include "tools/record/output_file.hpp"
#include "tools/replay/input/interruption.hpp"
#include "tools/replay/replay.hpp"
#include "tools/replay/running/configuration.hpp"
#include "tools/replay/suite.hpp"
#include "tools/replay/summary/merging.hpp"
#include "tools/replay/writing/printed_lines.hpp"

namespace com::velanto::connectivity::tools {

namespace {

// Standard output has the events. Dead letters among them are lines with a member of their own.
void checkOutputs(const ReplayOptions& options) {
  for (const auto& [name, path] :
       {std::pair("--report", options.report), std::pair("--record", options.record),
        std::pair("--redacted", options.redacted)}) {
    if (path && descriptorOf(*path) == STDOUT_FILENO) {
      throw ReplayError(EXIT_USAGE,
                        std::string(name) + " needs a file: standard output has the events");
    }
  }
}

// Whether the options ask for what only a run over FILES gives.
bool wantsFilesRun(const ReplayOptions& options) {
  return options.expect || options.record || options.dropped || options.redacted ||
         options.summary || options.explain || options.report || options.expect_events ||
         options.follow;
}

// The rules of what the tool does instead of a run over FILES.
void checkOtherTasks(const ReplayOptions& options) {
  if (options.check_config && (!options.config || !options.paths.empty())) {
    throw ReplayError(EXIT_USAGE, "--check-config needs --config and takes no FILES");
  }
  if (!options.suite && (options.update || options.junit)) {
    throw ReplayError(EXIT_USAGE, "--update and --junit need --suite");
  }
  if (options.suite && (!options.paths.empty() || wantsFilesRun(options))) {
    throw ReplayError(EXIT_USAGE,
                      "--suite takes no FILES, --expect, --expect-events, --record, --dropped, "
                      "--redacted, --report, --summary, --explain or --follow");
  }
  if (options.merge_summaries && (options.suite || options.check_config || options.against ||
                                  options.strict || wantsFilesRun(options))) {
    throw ReplayError(EXIT_USAGE, "--merge-summaries takes FILES alone");
  }
}

// The rules between options.
void checkTogether(const ReplayOptions& options) {
  checkOtherTasks(options);
  if (options.threads > MOST_THREADS) {
    throw ReplayError(EXIT_USAGE, "--threads takes at most " + std::to_string(MOST_THREADS));
  }
  const bool reads_standard_input =
      options.paths.empty() ||
      std::find(options.paths.begin(), options.paths.end(), "-") != options.paths.end();
  if (options.repeat > 1 && reads_standard_input && !options.suite && !options.check_config) {
    throw ReplayError(EXIT_USAGE, "--repeat cannot read standard input again");
  }
  if (options.redact.empty() == options.redacted.has_value() ||
      (options.redact_key && !options.redacted)) {
    throw ReplayError(EXIT_USAGE,
                      "--redact and --redacted need each other, --redact-key needs both");
  }
  if (options.follow && (options.repeat > 1 || options.threads > 1)) {
    throw ReplayError(EXIT_USAGE, "--follow takes no --repeat or --threads");
  }
  if ((options.expect_events || options.redacted) && options.repeat > 1) {
    throw ReplayError(EXIT_USAGE, "--expect-events and --redact take no --repeat");
  }
  if (options.as_recorded &&
      (options.batch_size > 1 || options.direction != "host" || options.explain)) {
    throw ReplayError(EXIT_USAGE, "--as-recorded takes no --batch-size, --direction or --explain");
  }
}

// The files that the run reads as messages.
std::vector<std::string> pathsOf(const std::vector<input_t>& inputs, const ReplayOptions& options) {
  std::vector<std::string> paths;
  paths.reserve(inputs.size());
  for (const input_t& input : inputs) {
    paths.push_back(input.is_standard_input ? "-" : input.name);
  }
  if (options.expect_events) {
    for (const input_t& input : inputsFrom({*options.expect_events})) paths.push_back(input.name);
  }
  return paths;
}

// For whoever starts the tool without knowing that it reads.
void explainTheWait(const std::vector<input_t>& inputs, std::ostream& diagnostics) {
  if (std::none_of(inputs.begin(), inputs.end(),
                   [](const input_t& input) { return input.is_standard_input; })) {
    return;
  }
  diagnostics << "ostrovia-replay: waits for messages from the terminal, each a line of JSON; "
                 "Ctrl-D ends them\n"
              << std::flush;
}

// Returns when the input to follow has its first file, or the user has interrupted the wait.
void awaitFirstFile(const ReplayOptions& options, std::ostream& diagnostics) {
  if (!options.follow || options.paths.empty() || options.paths.back() == "-") return;
  const std::string& path = options.paths.back();
  for (bool is_said = options.quiet; !isInterrupted() && mayComeLater(path); is_said = true) {
    if (!is_said) {
      diagnostics << REPLAY_NAME << ": waits for input at " << path << '\n' << std::flush;
    }
    waitForFile();
  }
}

// With the lines that the plug-in itself writes to standard error after those of the check.
int checkQuietly(const ReplayOptions& options, std::ostream& out, std::ostream& diagnostics) {
  // The calls of the check leave their lines here.
  StandardErrorCapture capture(StandardErrorCapture::Calls::AT_ONCE);
  const int status = checkConfiguration(options, out, diagnostics);
  PrintedLines printed;
  printed.add(capture.take(), "");
  diagnostics << printed.text();
  return status;
}

int mergeSummaries(const std::vector<input_t>& inputs, std::ostream& out) {
  out << mergedSummaries(inputs) << std::flush;
  if (!out) throw ReplayError(EXIT_IO, "cannot write to standard output");
  return EXIT_FINE;
}

// Replays, or does instead what the options ask for.
int obey(const ReplayOptions& options, std::ostream& out, std::ostream& diagnostics,
         Terminal* terminal, const display_t& display) {
  if (options.check_config) return checkQuietly(options, out, diagnostics);
  if (options.suite) return runSuite(options, diagnostics);
  awaitFirstFile(options, diagnostics);
  if (isInterrupted()) return EXIT_INTERRUPTED;
  const std::vector<input_t> inputs = inputsFrom(options.paths);
  checkFiles(options, pathsOf(inputs, options), {});
  if (options.merge_summaries) return mergeSummaries(inputs, out);
  if (display.typed && !options.quiet) explainTheWait(inputs, diagnostics);
  return replay(options, inputs, out, diagnostics, terminal, display.out);
}

} // namespace

int runReplay(int count, const char* const* arguments, std::ostream& out,
              std::ostream& standard_error, const display_t& display) noexcept {
  // From above: the tool's own text, made visible, past the status lines.
  Terminal terminal(*standard_error.rdbuf());
  VisibleLines visible(terminal);
  std::ostream diagnostics(&visible);
  try {
    ReplayOptions options;
    const bool goes_on =
        failingWith(EXIT_USAGE, [&] { return parse(replayTool(options), count, arguments, out); });
    if (!out.flush()) throw ReplayError(EXIT_IO, "cannot write to standard output");
    if (!goes_on) return EXIT_FINE;
    checkTogether(options);
    checkOutputs(options);
    if (options.plugin_path.empty()) options.plugin_path = PluginLibrary::defaultPath();
    return obey(options, out, diagnostics, display.progress ? &terminal : nullptr, display);
  } catch (...) {
    return reportError(diagnostics);
  }
}

} // namespace com::velanto::connectivity::tools
