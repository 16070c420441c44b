// Golden files: a run differs from one exactly when an outcome does, and a file of any other content
// is refused. The differences of two values are those of the same values exchanged.
//
//   input   two lines of JSON: an event of the run before, and one of the run now. If one of them is
//           no JSON, all of it is a golden file
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "fuzz/block_count.hpp"
#include "fuzz/finding.hpp"
#include "fuzz/memory_file.hpp"
#include "ndjson/json_writer.hpp"
#include "tools/record/columns.hpp"
#include "tools/replay/comparing/expectation.hpp"
#include "tools/replay/writing/golden.hpp"

namespace fuzz = com::velanto::connectivity::fuzz;
namespace tools = com::velanto::connectivity::tools;
using com::velanto::connectivity::data_t;

namespace {

constexpr std::size_t WIDEST = 79; // columns of a difference that is shown

const fuzz::MemoryFile& goldenFile() {
  static const fuzz::MemoryFile FILE;
  return FILE;
}

tools::record_t recordOf(const data_t& event) {
  static const std::string FILE = "in.ndjson";
  tools::record_t record;
  record.file = &FILE;
  record.outcome = tools::Outcome::CONVERTED;
  record.events = com::velanto::connectivity::toJson(event) + "\n";
  return record;
}

// Whether a run of `records` equals the golden file; nothing when that is refused.
std::optional<bool> isExpected(std::string_view golden, const tools::record_t& record) {
  goldenFile().write(golden);
  std::ostringstream shown;
  try {
    tools::Expectation expectation(goldenFile().path(), shown);
    expectation.take(record);
    const bool is_fine = expectation.finish() == tools::EXIT_FINE;
    fuzz::require(is_fine == shown.str().empty(), "a difference is shown");
    std::istringstream lines(shown.str());
    for (std::string line; std::getline(lines, line);) {
      fuzz::require(tools::widthOf(line) <= WIDEST, "a difference is narrow");
    }
    return is_fine;
  } catch (const tools::ReplayError& e) {
    fuzz::requireReason(e.what());
    fuzz::require(e.status() == tools::EXIT_IO &&
                      std::string_view(e.what()).starts_with(goldenFile().path() + ":"),
                  "a refusal has its place");
    return std::nullopt;
  }
}

using sides_t = std::pair<std::optional<std::string>, std::optional<std::string>>;

std::multimap<std::string, sides_t> differences(const data_t& before, const data_t& after) {
  std::multimap<std::string, sides_t> result;
  for (const tools::difference_t& difference : tools::differencesOf(before, after)) {
    result.emplace(difference.path, sides_t(difference.before, difference.after));
  }
  return result;
}

void checkEvents(const data_t& before, const data_t& after) {
  const bool is_same = before == after;
  const std::string golden = tools::goldenLineOf(recordOf(before)) + "\n";
  fuzz::require(isExpected(golden, recordOf(before)) == true, "a run equals its own golden file");
  fuzz::require(isExpected(golden, recordOf(after)) == is_same, "another event is a difference");

  const auto found = differences(before, after);
  fuzz::require(found.empty() == is_same, "values that differ have a difference");
  auto exchanged = differences(after, before);
  for (auto& [path, sides] : exchanged) std::swap(sides.first, sides.second);
  fuzz::require(std::is_permutation(found.begin(), found.end(), exchanged.begin(), exchanged.end()),
                "exchanged values have the same differences");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::BlockCount no_block_is_left;
  static com::velanto::connectivity::JsonReader reader;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t end = std::min(input.find('\n'), size);
  try {
    const data_t before = reader.parseValue(input.substr(0, end));
    const data_t after = reader.parseValue(input.substr(std::min(end + 1, size)));
    checkEvents(before, after);
  } catch (const com::velanto::connectivity::MalformedJson&) {
    static_cast<void>(isExpected(input, recordOf(data_t())));
  }
  return 0;
}
