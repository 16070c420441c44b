#include "tools/replay/suite.hpp"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <system_error>

#include "tools/host/file_identity.hpp"
#include "tools/replay/input/interruption.hpp"
#include "tools/replay/replay.hpp"
#include "tools/replay/writing/junit.hpp"

namespace com::velanto::connectivity::tools {

namespace {

namespace fs = std::filesystem;

// Takes everything and keeps nothing.
class NullBuffer final : public std::streambuf {
 protected:
  int_type overflow(int_type c) override { return traits_type::not_eof(c); }
  std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

fs::path goldenOf(fs::path input) { return input.replace_extension(".golden"); }

struct case_t {
  fs::path input;
  std::string obstacle; // why it does not run; empty: it does
};

// Nothing for a case, and for a file that no case has.
std::string obstacleOf(const fs::path& path) {
  const std::string name = path.filename();
  if (fs::is_directory(path)) return " is a folder: its cases do not run";
  if (path.extension() == ".golden" && !fs::exists(fs::path(path).replace_extension(".ndjson"))) {
    return " has no case " + path.stem().string() + ".ndjson";
  }
  if (name.find(".ndjson.") != std::string::npos)
    return " does not run: its name must end in .ndjson";
  return "";
}

// Hidden files and other kinds of files are nobody's case.
std::vector<case_t> casesIn(const std::string& folder) {
  std::error_code error;
  std::vector<case_t> cases;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    const fs::path& path = entry.path();
    if (path.filename().string().starts_with('.')) continue;
    std::string obstacle = obstacleOf(path);
    if (path.extension() == ".ndjson" || !obstacle.empty()) cases.push_back({path, obstacle});
  }
  if (error) throw ReplayError(EXIT_IO, folder + ": " + error.message());
  if (std::none_of(cases.begin(), cases.end(),
                   [](const case_t& each) { return each.obstacle.empty(); })) {
    throw ReplayError(EXIT_USAGE, folder + " has no case, no file NAME.ndjson");
  }
  std::sort(cases.begin(), cases.end(),
            [](const case_t& a, const case_t& b) { return a.input < b.input; });
  return cases;
}

void checkFilesOf(const ReplayOptions& options, const std::vector<case_t>& cases) {
  std::vector<std::string> read;
  std::vector<std::string> written;
  for (const case_t& each : cases) {
    if (!each.obstacle.empty()) continue;
    read.push_back(each.input);
    (options.update ? written : read).push_back(goldenOf(each.input));
  }
  checkFiles(options, read, written);
}

case_result_t runCase(const ReplayOptions& suite, const case_t& each) {
  const fs::path& input = each.input;
  if (!each.obstacle.empty()) {
    return {input.filename(), EXIT_DIFFERENT, input.string() + each.obstacle + "\n"};
  }
  ReplayOptions options = suite;
  options.quiet = true;
  options.strict = false;
  const fs::path golden = goldenOf(input);
  (suite.update ? options.record : options.expect) = golden.string();
  std::vector<input_t> inputs = inputsFrom({input.string()});
  inputs.front().name = input.filename().string(); // golden files are the same in any folder
  NullBuffer nowhere;
  std::ostream events(&nowhere);
  std::ostringstream complaints;
  case_result_t result;
  result.name = input.stem().string();
  const auto start = std::chrono::steady_clock::now();
  if (!suite.update && !fs::exists(golden)) {
    result.status = EXIT_DIFFERENT;
    result.complaint = "there is no " + golden.string() + "; --update makes it\n";
    return result;
  }
  const int status = replay(options, inputs, events, complaints);
  result.status = status == EXIT_BAD_INPUT ? EXIT_FINE : static_cast<exit_status_t>(status);
  result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  result.complaint = complaints.str();
  return result;
}

// For the report, also when there is no such plug-in: then the report has the reason.
std::string buildOf(const std::string& plugin_path) {
  try {
    return buildText(identityOf(plugin_path));
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

} // namespace

int runSuite(const ReplayOptions& options, std::ostream& diagnostics) {
  std::vector<case_result_t> results;
  int worst = EXIT_FINE;
  std::size_t failed = 0;
  const std::vector<case_t> cases = casesIn(*options.suite);
  checkFilesOf(options, cases);
  for (const case_t& each : cases) {
    const case_result_t& result = results.emplace_back(runCase(options, each));
    worst = std::max<int>(worst, result.status);
    if (result.status != EXIT_FINE) ++failed;
    const char* const word = options.update ? "made  " : "ok    ";
    diagnostics << (result.status == EXIT_FINE ? word : "FAILED") << "  " << result.name << '\n'
                << result.complaint;
    if (isInterrupted()) break;
  }
  diagnostics << results.size() << (results.size() == 1 ? " case, " : " cases, ") << failed
              << " failed\n";
  if (isInterrupted()) {
    diagnostics << REPLAY_NAME << ": interrupted, with " << cases.size() - results.size()
                << " cases not run\n";
    return EXIT_INTERRUPTED;
  }
  if (options.junit)
    writeJunit(*options.junit, *options.suite, buildOf(options.plugin_path), results);
  return worst;
}

} // namespace com::velanto::connectivity::tools
