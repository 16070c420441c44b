// Keeps docs/host-interface.md true. (1) Its quotations are in the sources, and its pieces of the
// program make the whole. (2) Its tables have all functions and no others. (3) All cases of the
// tests call the host functions in the phases of its table.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>

#include "ndjson/json_reader.hpp"
#include "tests/docs/markdown.hpp"
#include "tests/end_to_end/loaded_codec.hpp"
#include "tests/support/pattern.hpp"
#include "tools/check/conformance/case.hpp"

namespace com::velanto::connectivity::test {

namespace {

constexpr const char* HOST_INTERFACE = "docs/host-interface.md";
constexpr const char* PROGRAM = "tests/end_to_end/minimal_host.c";

using name_set_t = std::set<std::string>;
using tools::check::case_t;

// In the order of standin_function_t.
const std::array<std::string, STANDIN_FUNCTIONS> ORDERED_FUNCTIONS = {
    "vlt_allocate_map", "vlt_reallocate_map",     "vlt_free_map",    "vlt_copy_data",
    "vlt_copy_string",  "vlt_free_string",        "vlt_free_vector", "vlt_free_buffer",
    "vlt_free_custom",  "vlt_data_to_string",     "vlt_hash_string", "vlt_get_log_level",
    "vlt_log_at",       "vlt_set_user_status_map"};

std::string textOf(const std::string& file) {
  std::string text;
  for (const std::string& line : readDocument(file).lines) text += line + "\n";
  return text;
}

// The lines that are not blank.
std::string withoutBlankLines(const std::string& text) {
  std::string result;
  for (const std::string& line : documentOf(text).lines) {
    if (!line.empty()) result += line + "\n";
  }
  return result;
}

// The document quotes drawings without the " * " of their comment.
std::string withoutCommentMarks(const std::string& text) {
  return Pattern("\n \\* ").replacedIn(text, "\n");
}

// The names after which `text` has `pattern`, a regular expression with one group.
name_set_t namesIn(const std::string& text, const char* pattern) {
  name_set_t names;
  for (const Pattern::match_t& found : Pattern(pattern).allIn(text)) names.insert(found[1]);
  return names;
}

name_set_t firstColumn(const char* head) {
  name_set_t names;
  for (const auto& row : readTable(readDocument(HOST_INTERFACE), head)) names.insert(row[0]);
  return names;
}

// "a, b" as a set; "never" is the empty one.
name_set_t phasesIn(const std::string& cell) {
  return cell == "never" ? name_set_t() : namesIn(cell, "([a-z]+)");
}

class HostInterface : public HostFixture {
 protected:
  // Adds the host functions called since the last time to `phase`.
  void note(const char* phase) {
    for (std::size_t i = 0; i < ORDERED_FUNCTIONS.size(); ++i) {
      if (standin_calls(static_cast<standin_function_t>(i)) > 0) {
        phases_[ORDERED_FUNCTIONS[i]].insert(phase);
      }
    }
  }

  void play(case_t& played) {
    standin_set_default_log_level(played.log_level);
    standin_reset_calls();
    std::optional<PluginLibrary> library(std::in_place, VLT_PLUGIN_PATH);
    note("load");
    standin_reset_calls();
    void* const codec =
        library->create("codec", "chain", played.configuration.underlying(), nullptr, nullptr);
    note("create");
    if (codec != nullptr) playBatch(*library, codec, played);
    standin_reset_calls();
    library->destroy(codec);
    note("destroy");
    standin_reset_calls();
    library.reset();
    note("unload");
  }

  void playBatch(const PluginLibrary& library, void* codec, case_t& played) {
    standin_reset_calls();
    library.setNextTowardsHost(codec, nullptr, &lookAtNothing);
    library.setNextTowardsTransport(codec, nullptr, &lookAtNothing);
    library.start(codec);
    library.hostReady(codec);
    note("lifecycle");
    standin_reset_calls();
    auto* const send =
        played.towards_transport ? library.sendBatchTowardsTransport : library.sendBatchTowardsHost;
    send(codec, played.in.data(), played.in.data() + played.in.size());
    note("batch");
    standin_reset_calls();
    library.shutdown(codec);
    note("lifecycle");
  }

  static void lookAtNothing(void*, vlt_underlying_message_t*, vlt_underlying_message_t*) {}

  std::map<std::string, name_set_t> phases_;
  JsonReader reader_;
};

} // namespace

TEST_F(HostInterface, ProgramIsQuotedWhole) {
  std::string quoted;
  for (const block_t& block : readBlocks(readDocument(HOST_INTERFACE))) {
    if (block.info == "c") quoted += block.text;
  }
  EXPECT_EQ(withoutBlankLines(quoted), withoutBlankLines(textOf(PROGRAM)));
}

TEST_F(HostInterface, HeadersAreQuotedAsTheyAre) {
  name_set_t quoted;
  for (const block_t& block : readBlocks(readDocument(HOST_INTERFACE))) {
    if (block.info == "c" || block.info == "console") continue;
    quoted.insert(block.info);
    const std::string header = textOf(block.info);
    const bool is_there = header.find(block.text) != std::string::npos ||
                          withoutCommentMarks(header).find(block.text) != std::string::npos;
    EXPECT_TRUE(is_there) << placeOf(readDocument(HOST_INTERFACE), block.line);
  }
  EXPECT_EQ(quoted, (name_set_t{"host/logging.h", "host/storage.h", "host/types.h"}));
}

TEST_F(HostInterface, TablesHaveEveryFunction) {
  const std::string headers =
      textOf("host/storage.h") + textOf("host/logging.h") + textOf("host/status.h");
  EXPECT_EQ(firstColumn("Host function"), namesIn(headers, "\\b(vlt_[a-z_]+)\\("));

  name_set_t exported;
  for (const std::string& name : firstColumn("Function")) {
    exported.insert(name + "_OstroviaNotifications2Codec");
  }
  EXPECT_EQ(exported, namesIn(textOf("codec/exported_names.map"), "\n +([a-zA-Z0-9_]+);"));
}

TEST_F(HostInterface, TagsAgreeWithTheHeader) {
  name_set_t documented;
  for (const auto& row : readTable(readDocument(HOST_INTERFACE), "Tag")) {
    std::string name = row[1];
    std::replace(name.begin(), name.end(), ' ', '_');
    std::transform(name.begin(), name.end(), name.begin(), [](char c) {
      return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    documented.insert("VLT_TAG_" + name + " = " + row[0]);
  }
  EXPECT_EQ(documented, namesIn(textOf("host/types.h"), "(VLT_TAG_[A-Z_]+ = [0-9]+)"));
}

TEST_F(HostInterface, VersionsAgreeWithTheLibrary) {
  const PluginLibrary library(VLT_PLUGIN_PATH);
  const std::string text = textOf(HOST_INTERFACE);
  const std::string interface = std::to_string(library.apiVersion());
  EXPECT_NE(text.find("`vlt_plugin_api_version` is " + interface + " "), std::string::npos);
  const std::string product = library.productVersion();
  EXPECT_NE(text.find("`vlt_plugin_product_version` is `" + product + "`"), std::string::npos);
}

TEST_F(HostInterface, HostFunctionsHaveThePhasesOfTheTable) {
  static_cast<void>(stderrOf([&] {
    for (const auto& [file, line] : tools::check::embeddedLines()) {
      case_t played = tools::check::readCase(reader_.parseValue(line));
      play(played);
    }
  }));
  for (const auto& row : readTable(readDocument(HOST_INTERFACE), "Host function")) {
    EXPECT_EQ(phases_[row[0]], phasesIn(row[1])) << row[0];
  }
}

} // namespace com::velanto::connectivity::test
