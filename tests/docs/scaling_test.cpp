// Keeps docs/scaling.md true: (1) its script and its commands print the lines below them; (2) its
// measured figures are in docs/performance.md.
#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

#include "tests/docs/console.hpp"
#include "tests/support/pattern.hpp"

namespace com::velanto::connectivity::test {

namespace {

constexpr const char* SCALING = "docs/scaling.md";
constexpr const char* PERFORMANCE = "docs/performance.md";
constexpr std::string_view SCRIPT = "sh ";

using ::testing::AnyOf;
using ::testing::StartsWith;

class ScalingDocument : public Console {
 protected:
  ScalingDocument() {
    copySamples("");
    for (const block_t& block : readBlocks(readDocument(SCALING))) {
      if (!block.info.starts_with(SCRIPT)) continue;
      script_ += block.text;
      folder_.write(block.info.substr(SCRIPT.size()), block.text);
    }
  }

  // The default for `name` in a script.
  std::string defaultOf(const std::string& name) const {
    const auto found = Pattern("\\{" + name + ":=([0-9.]+)\\}").allIn(script_);
    return found.empty() ? "not in the script" : found.front()[1];
  }

  std::string script_; // all of them
};

// Cell `column`, counted from 0, of the row that begins with `row` in the table below `title`.
std::string cellOf(const std::string& title, const std::string& row, std::size_t column) {
  bool is_below = false;
  for (const std::string& line : readDocument(PERFORMANCE).lines) {
    is_below = is_below || line.starts_with(title);
    if (!is_below || !line.starts_with(row + "  ")) continue;
    std::istringstream cells(line.substr(row.size()));
    std::string cell;
    for (std::size_t i = 0; i <= column; ++i) cells >> cell;
    return cell;
  }
  return "no row '" + row + "' below '" + title + "'";
}

} // namespace

TEST_F(ScalingDocument, EveryCommandPrintsTheOutputShown) { expectAsShown(SCALING); }

TEST_F(ScalingDocument, MeasuredFiguresAgreeWithPerformance) {
  EXPECT_EQ(defaultOf("alone"),
            cellOf("Kinds and contenders, batches of 256 (ns per message", "plug-in", 0));
  EXPECT_EQ(defaultOf("crowded"), cellOf("Threads (ns per message and thread)", "plug-in", 1));
}

TEST_F(ScalingDocument, RatioOfDroppedMessagesAgreesWithPerformance) {
  std::vector<std::string> ratios;
  for (const char* const kind :
       {"alarms", "events", "measurements", "managedobjects", "operations"}) {
    ratios.push_back(cellOf("Dropped notifications", kind, 2));
  }
  const auto [least, most] = std::minmax_element(ratios.begin(), ratios.end());
  std::string document;
  for (const std::string& line : readDocument(SCALING).lines) document += line + " ";
  EXPECT_NE(document.find(*least + " to " + *most + " times"), std::string::npos)
      << *least << " to " << *most;
}

// A block of another kind would look like an example and be none. scripts/test_cluster.sh runs the
// blocks that take a cluster.
TEST_F(ScalingDocument, EveryBlockIsRun) {
  const document_t document = readDocument(SCALING);
  for (const block_t& block : readBlocks(document)) {
    EXPECT_THAT(block.info, AnyOf("console", "console parallel", "console ssh", "console slurm",
                                  StartsWith(SCRIPT)))
        << placeOf(document, block.line);
  }
}

} // namespace com::velanto::connectivity::test
