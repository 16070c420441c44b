// ostrovia-bench: compares all contenders, times them against each other and prints the tables.
//   exit 0  done
//        1  contenders differ, or the plug-in does not load
//        2  wrong arguments, or a build that must not be timed
#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "bench/report/json_report.hpp"
#include "bench/report/svg_chart.hpp"
#include "bench/report/tables.hpp"
#include "tools/host/log_capture.hpp"
#include "tools/host/plugin_library.hpp"

namespace {

using namespace com::velanto::connectivity::bench;

void write(const std::filesystem::path& path, const std::string& content) {
  std::ofstream file(path);
  file << content;
  if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
  std::cout << "written: " << path.string() << '\n';
}

void compareAll(const options_t& options) {
  const auto compared = [](const suite_t& suite) {
    std::cout << "same results: " << suite.name << std::endl;
  };
  compared(measureKinds(options, LARGE_BATCH));
  for (const auto measure :
       {measureCapacities, measureDropped, measureScaling, measureTimestamps, measureRecording}) {
    compared(measure(options));
  }
}

void measureAll(const options_t& options, const std::filesystem::path& results) {
  const environment_t where = environment();
  std::vector<suite_t> suites;
  const auto show = [&suites](suite_t suite, const auto& text) {
    suites.push_back(std::move(suite));
    std::cout << text(suites.back()) << std::flush;
  };
  std::cout << environmentText(where);
  for (const std::size_t batch : {LARGE_BATCH, std::size_t{16}, std::size_t{1}}) {
    show(measureKinds(options, batch), [batch](const suite_t& suite) {
      return contendersText("Kinds and contenders, batches of " + std::to_string(batch), suite);
    });
  }
  show(measureCapacities(options), [](const suite_t& suite) {
    return contendersText("Input tables of other capacities", suite);
  });
  show(measureDropped(options), droppedText);
  show(measureScaling(options), scalingText);
  show(measureThreads(options), [](const suite_t& suite) { return threadsText("Threads", suite); });
  show(measureTimestamps(options),
       [](const suite_t& suite) { return threadsText("Reading timestamps", suite); });
  show(measureRecording(options), recordingText);
  show(measureRecordedBatches(options), recordedBatchesText);
  if (results.empty()) return;
  std::filesystem::create_directories(results);
  write(results / "results.json", jsonReport(where, suites));
  write(results / "chart.svg", svgChart(suites.front()));
}

int run(const options_t& options, bool instructions, const std::string& results) {
  using com::velanto::connectivity::tools::LogCapture;
  const LogCapture unheard(LogCapture::Unclaimed::DROPPED);
  if (options.only_check) {
    compareAll(options);
    return 0;
  }
  if (const auto reason = reasonNotToTime()) {
    std::cerr << "ostrovia-bench: " << *reason << "; nothing is timed\n";
    return 2;
  }
  keepHeap();
  if (!instructions) {
    measureAll(options, results);
  } else if (!countInstructions(options)) {
    std::cerr << "ostrovia-bench: instructions are counted under callgrind\n";
    return 2;
  }
  return 0;
}

int parseAndRun(int argc, char** argv) {
  CLI::App app("Times the plug-in against the floor of its host calls and against JSON libraries.");
  options_t options;
  bool instructions = false;
  std::string results;
  app.add_option("--plugin", options.plugin, "the plug-in library (default: beside this program)");
  app.add_option("--against", options.against, "the plug-in library of another revision");
  app.add_option("--against-name", options.against_name, "its name in the tables");
  app.add_option("--rounds", options.rounds, "rounds of each race")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  app.add_flag("--check", options.only_check, "only compare the contenders' results");
  app.add_flag("--instructions", instructions, "dump instruction counts; run under callgrind");
  app.add_option("--results", results, "folder for results.json and chart.svg");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& outcome) {
    return app.exit(outcome) == 0 ? 0 : 2;
  }
  if (options.plugin.empty()) {
    options.plugin = com::velanto::connectivity::tools::PluginLibrary::defaultPath();
  }
  return run(options, instructions, results);
}

} // namespace

int main(int argc, char** argv) {
  try {
    return parseAndRun(argc, argv);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "ostrovia-bench: %s\n", failure.what());
    return 1;
  }
}
