#include "tools/replay/suite.hpp"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <sstream>
#include <streambuf>
#include <system_error>

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

std::vector<fs::path> casesIn(const std::string& folder) {
  std::error_code error;
  std::vector<fs::path> cases;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (entry.path().extension() == ".ndjson") cases.push_back(entry.path());
  }
  if (error) throw ReplayError(EXIT_IO, folder + ": " + error.message());
  if (cases.empty()) throw ReplayError(EXIT_USAGE, folder + " has no case, no file NAME.ndjson");
  std::sort(cases.begin(), cases.end());
  return cases;
}

fs::path goldenOf(fs::path input) { return input.replace_extension(".golden"); }

void checkFilesOf(const ReplayOptions& options, const std::vector<fs::path>& cases) {
  std::vector<std::string> read;
  std::vector<std::string> written;
  for (const fs::path& input : cases) {
    read.push_back(input);
    (options.update ? written : read).push_back(goldenOf(input));
  }
  checkFiles(options, read, written);
}

case_result_t runCase(const ReplayOptions& suite, const fs::path& input) {
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

} // namespace

int runSuite(const ReplayOptions& options, std::ostream& diagnostics) {
  std::vector<case_result_t> results;
  int worst = EXIT_FINE;
  std::size_t failed = 0;
  const std::vector<fs::path> cases = casesIn(*options.suite);
  checkFilesOf(options, cases);
  for (const fs::path& input : cases) {
    const case_result_t& result = results.emplace_back(runCase(options, input));
    worst = std::max<int>(worst, result.status);
    if (result.status != EXIT_FINE) ++failed;
    const char* const word = options.update ? "made  " : "ok    ";
    diagnostics << (result.status == EXIT_FINE ? word : "FAILED") << "  " << result.name << '\n'
                << result.complaint;
    if (isInterrupted()) break;
  }
  diagnostics << results.size() << " cases, " << failed << " failed\n";
  if (isInterrupted()) {
    diagnostics << REPLAY_NAME << ": interrupted, with " << cases.size() - results.size()
                << " cases not run\n";
    return EXIT_INTERRUPTED;
  }
  if (options.junit) writeJunit(*options.junit, *options.suite, results);
  return worst;
}

} // namespace com::velanto::connectivity::tools
