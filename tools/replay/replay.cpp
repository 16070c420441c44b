#include "tools/replay/replay.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string_view>

#include "tools/host/host_library.hpp"
#include "tools/host/log_capture.hpp"
#include "tools/host/standard_error_capture.hpp"
#include "tools/record/files_in_use.hpp"
#include "tools/replay/consumers.hpp"
#include "tools/replay/input/form_check.hpp"
#include "tools/replay/input/interruption.hpp"
#include "tools/replay/running/chain_pool.hpp"
#include "tools/replay/running/configuration.hpp"
#include "tools/replay/summary/recordings.hpp"
#include "tools/replay/writing/progress.hpp"

namespace com::velanto::connectivity::tools {

namespace {

using stopwatch_t = std::chrono::steady_clock;
using milliseconds_t = std::chrono::duration<double, std::milli>;

// `blocks` is not 0.
std::string blocksFault(std::int64_t blocks) {
  const std::string number =
      std::to_string(std::abs(blocks)) + (std::abs(blocks) == 1 ? " block" : " blocks");
  return blocks > 0 ? "the plug-in leaked " + number + " of the host"
                    : "the plug-in freed " + number + " of the host that it did not own";
}

class Replay {
 public:
  Replay(const ReplayOptions& options, std::ostream& events, std::ostream& diagnostics,
         Terminal* terminal, Screen screen)
      : options_(options),
        terminal_(options.quiet ? nullptr : terminal),
        direction_(options.direction == "transport" ? Direction::TOWARDS_TRANSPORT
                                                    : Direction::TOWARDS_HOST),
        diagnostics_(diagnostics),
        consumers_(options, events, diagnostics, screen),
        figures_(consumers_.figures()) {}

  int run(const std::vector<input_t>& inputs);

 private:
  void setLevel();
  void drive(LineReader& reader);
  void takePrinted();
  // Whether lines that the plug-in writes to standard error are shown as lines of text.
  [[nodiscard]] bool showsPrinted() const {
    return options_.summary != "json" && (!options_.quiet || options_.summary);
  }
  void checkCopy(const Recordings& recordings) const;
  void replayAll(LineReader& reader, ChainPool& pool);
  [[nodiscard]] std::exception_ptr runThrough(LineReader& reader, ChainPool& pool);
  void noteCut(const std::exception_ptr& failure);
  std::function<std::string()> summaryAbove(const LineReader& reader);
  void reportIncidents(incidents_t& incidents);
  void shutDown(ChainPool& pool);
  void report(const std::string& text) { diagnostics_ << REPLAY_NAME << ": " + text + "\n"; }
  void worsen(exit_status_t status) { status_ = std::max(status_, status); }
  void judge(std::optional<std::int64_t> blocks, const Recordings& recordings);
  void writeFigures(const run_figures_t& run);
  [[nodiscard]] std::string reachedText() const;

  const ReplayOptions& options_;
  Terminal* terminal_; // null: no progress
  Direction direction_;
  std::ostream& diagnostics_;
  std::optional<Progress> progress_; // outlives the consumers, which point at it
  const LogCapture capture_;
  // While a plug-in lives. A host library that keeps its log to itself writes it there.
  std::optional<StandardErrorCapture> standard_error_;
  std::optional<PluginLibrary> library_;
  Consumers consumers_;
  Figures& figures_;
  bool law_broken_ = false;
  std::string cut_; // why the run ended before its input; empty: it did not
  std::chrono::nanoseconds elapsed_{};
  exit_status_t status_ = EXIT_FINE;
};

int Replay::run(const std::vector<input_t>& inputs) {
  setLevel();
  // The caller may hold blocks; the plug-in library makes some at its loading and gives them back
  // only at its unloading.
  const std::optional<std::int64_t> before = liveBlocks();
  reading_t reading;
  reading.times = options_.repeat;
  if (!options_.as_recorded) reading.direction = direction_;
  reading.follow = options_.follow;
  reading.max_line = options_.max_line << 20U;
  LineReader reader(inputs, reading);
  if (capture_.works()) {
    standard_error_.emplace(options_.threads == 1 ? StandardErrorCapture::Calls::IN_TURN
                                                  : StandardErrorCapture::Calls::AT_ONCE);
  }
  try {
    drive(reader);
  } catch (...) {
    takePrinted();
    diagnostics_ << consumers_.printed().text(); // it may say why
    throw;
  }
  library_.reset();
  takePrinted();
  standard_error_.reset();
  std::optional<std::int64_t> blocks = liveBlocks();
  if (blocks) *blocks -= before.value_or(0) + consumers_.lostBlocks();
  judge(blocks, reader.recordings());
  const run_figures_t run = {figures_.read(),     figures_.out(),       elapsed_,    blocks,
                             reader.recordings(), consumers_.pairing(), cut_.empty()};
  writeFigures(run);
  if (run.complete) consumers_.writeReport(run, status_);
  return status_;
}

void Replay::setLevel() {
  // The tool always needs the reason of a drop, at any level of its output.
  const bool set = setLogLevel(std::max(shownLogLevel(options_), DROPPED_LEVEL));
  if (!set && options_.log_level) {
    report("this host library does not let its log level be set; --log-level is ignored");
  }
}

// Takes what the plug-in has printed without a message.
void Replay::takePrinted() {
  if (standard_error_) consumers_.printed().add(standard_error_->take(), "");
}

// The plug-in's whole life. An error ends it without the rest of the input and without shutdown.
void Replay::drive(LineReader& reader) {
  library_.emplace(options_.plugin_path);
  takePrinted();
  const data_t configuration = configurationOf(options_);
  consumers_.addPlugins(*library_, configuration, direction_);
  if (standard_error_) static_cast<void>(standard_error_->take()); // of other plug-ins
  std::vector<log_line_t> log;
  std::optional<ChainPool> pool;
  try {
    pool.emplace(
        *library_, configuration, direction_,
        pool_options_t{options_.threads, batching_t{options_.batch_size, options_.as_recorded},
                       options_.explain.has_value(), options_.follow},
        log);
  } catch (const PluginError&) {
    consumers_.takeLog(log); // it says why
    throw;
  }
  consumers_.takeLog(log);
  takePrinted();
  const stopwatch_t::time_point start = stopwatch_t::now();
  try {
    replayAll(reader, *pool);
  } catch (...) {
    consumers_.pause(); // an aborted run still reports its results so far
    throw;
  }
  consumers_.pause();
  elapsed_ = stopwatch_t::now() - start - consumers_.pauses();
  shutDown(*pool);
  worsen(consumers_.finish());
  consumers_.pause();
  checkCopy(reader.recordings());
  if (cut_.empty()) {
    consumers_.commit();
  } else if (options_.record || options_.dropped || options_.redacted || options_.report) {
    cut_ += "; no file is written";
  }
}

// A copy without some messages would contradict the counts of its recorder.
void Replay::checkCopy(const Recordings& recordings) const {
  for (const recording_t& recording : recordings.all()) {
    if (!options_.redacted || recording.other_direction == 0) continue;
    throw ReplayError(EXIT_USAGE, recording.name +
                                      " has messages of both directions, which only --as-recorded "
                                      "copies; " +
                                      *options_.redacted + " is not written");
  }
}

void Replay::replayAll(LineReader& reader, ChainPool& pool) {
  if (terminal_ != nullptr) {
    consumers_.add(progress_.emplace(
        *terminal_, [&reader] { return reader.fractionRead(); }, summaryAbove(reader)));
  }
  const std::exception_ptr failure = runThrough(reader, pool);
  if (!reader.lastRemarks().empty()) consumers_.takeRemarks(reader.lastRemarks());
  if (progress_) consumers_.remove(*progress_);
  noteCut(failure);
}

// The whole input through the pool. Returns why the input cannot be read further, or null.
std::exception_ptr Replay::runThrough(LineReader& reader, ChainPool& pool) {
  FormCheck form;
  const auto take = [this, &form](const record_t& record) {
    if (!record.remarks.empty()) consumers_.takeRemarks(record.remarks);
    consumers_.take(record);
    if (!options_.suite) form.take(record); // its cases may have malformed lines alone
  };
  const auto pause = [this] {
    consumers_.pause();
    if (options_.follow && showsPrinted()) diagnostics_ << consumers_.printed().firstText();
  };
  try {
    return pool.run(reader, {take, [this](incidents_t& incidents) { reportIncidents(incidents); },
                             [this] { return consumers_.hasNoUse(); }, pause});
  } catch (const WrongForm&) {
    return std::current_exception();
  }
}

// Notes why the run has ended before its input, if it has. Ctrl-C is no such end for a followed one.
void Replay::noteCut(const std::exception_ptr& failure) {
  if (failure && figures_.read() == 0) std::rethrow_exception(failure); // there is nothing to say
  if (failure) {
    consumers_.pause();
    try {
      std::rethrow_exception(failure);
    } catch (const ReplayError& error) {
      report(error.what());
      worsen(error.status());
    }
    cut_ = "the input cannot be read further";
  } else if (isInterrupted()) {
    worsen(EXIT_INTERRUPTED);
    if (!options_.follow) cut_ = "interrupted";
  } else if (consumers_.hasNoUse()) {
    cut_ = "nobody reads the output any more";
  }
}

// The summary so far, for a run that may go on for days; otherwise nothing.
std::function<std::string()> Replay::summaryAbove(const LineReader& reader) {
  if (!options_.follow) return {};
  return [this, &reader, start = stopwatch_t::now()] {
    if (options_.summary == "json") return std::string();
    return consumers_.summaryOf({figures_.read(),
                                 figures_.out(),
                                 stopwatch_t::now() - start,
                                 {},
                                 reader.recordings(),
                                 consumers_.pairing()});
  };
}

void Replay::reportIncidents(incidents_t& incidents) {
  for (const std::size_t messages : incidents.failed) {
    report("the plug-in failed on a batch, messages " + std::to_string(messages));
    worsen(EXIT_PLUGIN);
  }
  for (const batch_time_t& batch : incidents.batches) {
    consumers_.takeBatch(batch.messages, batch.time);
  }
  if (options_.threads > 1) takePrinted();
  // One that is broken once is often broken with every message.
  if (!incidents.broken_laws.empty() && !law_broken_) {
    report(incidents.broken_laws.front());
    law_broken_ = true;
  }
  incidents.failed.clear();
  incidents.batches.clear();
  incidents.broken_laws.clear();
}

void Replay::shutDown(ChainPool& pool) {
  for (const call_result_t& last : pool.shutdown()) {
    consumers_.takeLog(last.log);
    consumers_.printed().add(last.printed, "");
    figures_.takeUnasked(last.outputs.size());
    if (!last.failed) continue;
    report("the plug-in failed in shutdown");
    worsen(EXIT_PLUGIN);
  }
}

void Replay::judge(std::optional<std::int64_t> blocks, const Recordings& recordings) {
  const std::string broken = figures_.brokenLaw();
  if (!broken.empty()) report(broken);
  if (blocks.value_or(0) != 0) report(blocksFault(*blocks));
  if (!broken.empty() || law_broken_ || blocks.value_or(0) != 0) worsen(EXIT_LAW);
  for (const std::string& fault : recordings.faults()) report(fault);
  if (figures_.count(Outcome::MALFORMED) > 0 || !recordings.faults().empty()) {
    worsen(EXIT_BAD_INPUT);
  }
  if (options_.strict && figures_.count(Outcome::DROPPED) > 0) worsen(EXIT_DROPPED);
}

std::string Replay::reachedText() const {
  const std::uint64_t to_transport = figures_.outToTransport();
  if (options_.as_recorded) {
    return "host " + std::to_string(figures_.out() - to_transport) + ", the transport " +
           std::to_string(to_transport);
  }
  return (direction_ == Direction::TOWARDS_HOST ? "host " : "transport ") +
         std::to_string(figures_.out());
}

void Replay::writeFigures(const run_figures_t& run) {
  const bool in_json = options_.summary == "json";
  if (showsPrinted()) diagnostics_ << consumers_.printed().text();
  diagnostics_ << consumers_.summaryOf(run);
  if (in_json) return; // it has all that the lines below say
  if (!cut_.empty() && (!options_.quiet || options_.summary)) report("incomplete: " + cut_);
  if (!options_.quiet || options_.summary) {
    diagnostics_ << recordingsText(run.recordings, run.pairing);
  }
  if (options_.quiet) return;
  std::array<char, 400> digits{}; // room for any double
  const std::to_chars_result end = std::to_chars(
      digits.begin(), digits.end(), milliseconds_t(elapsed_).count(), std::chars_format::fixed, 3);
  diagnostics_ << "read " << figures_.read() << ", reached the " << reachedText() << ", dropped "
               << figures_.count(Outcome::DROPPED) << ", malformed "
               << figures_.count(Outcome::MALFORMED) << ", "
               << std::string_view(digits.begin(), end.ptr) << " ms";
  if (!run.blocks) {
    diagnostics_ << ", live blocks not counted by this host library";
  } else if (*run.blocks != 0 || options_.summary) {
    diagnostics_ << ", " << *run.blocks << " blocks live";
  }
  diagnostics_ << '\n';
}

} // namespace

void checkFiles(const ReplayOptions& options, const std::vector<std::string>& read,
                const std::vector<std::string>& written) {
  FilesInUse files;
  for (const std::string& path : read) files.read(path);
  files.read(options.plugin_path);
  for (const std::optional<std::string>& path :
       {options.config, options.expect, options.against, options.redact_key}) {
    if (path) files.read(*path);
  }
  files.writeStreams();
  for (const std::string& path : written) files.write(path);
  for (const std::optional<std::string>& path :
       {options.report, options.dropped, options.record, options.redacted, options.junit}) {
    if (path) files.write(*path);
  }
}

int reportError(std::ostream& diagnostics) noexcept {
  const auto report = [&](const std::exception& error, int status) {
    diagnostics << REPLAY_NAME << ": " << error.what() << '\n';
    return status;
  };
  try {
    throw;
  } catch (const ReplayError& error) {
    return report(error, error.status());
  } catch (const PluginError& error) {
    return report(error, EXIT_PLUGIN);
  } catch (const std::bad_alloc&) {
    diagnostics << REPLAY_NAME
                << ": memory has run out; --max-line bounds the lines of the input\n";
    return EXIT_IO;
  } catch (const std::exception& error) {
    return report(error, EXIT_IO);
  }
}

int replay(const ReplayOptions& options, const std::vector<input_t>& inputs, std::ostream& events,
           std::ostream& diagnostics, Terminal* terminal, Screen screen) noexcept {
  try {
    return Replay(options, events, diagnostics, terminal, screen).run(inputs);
  } catch (...) {
    return reportError(diagnostics);
  }
}

} // namespace com::velanto::connectivity::tools
