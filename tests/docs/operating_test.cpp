// Keeps the tables of docs/operating.md true. (1) It runs every case of the tests, and every fault
// of a host, through the built plug-in. (2) The document has each line that they write, in the log
// or on standard error. (3) They write each line that the document has.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include "ndjson/json_reader.hpp"
#include "tests/docs/markdown.hpp"
#include "tests/end_to_end/loaded_codec.hpp"
#include "tests/support/allocations.hpp"
#include "tools/check/conformance/case.hpp"

namespace com::velanto::connectivity::test {

namespace {

using ::testing::AnyOf;

constexpr const char* OPERATING = "docs/operating.md";
constexpr std::string_view REASON = "REASON";

// A row of a table and whether a case wrote it.
struct documented_t {
  std::string level; // empty: none
  std::string pattern;
  bool seen = false;
};

class Documented {
 public:
  Documented() {
    const document_t document = readDocument(OPERATING);
    for (const auto& row : readTable(document, "Level")) lines_.push_back({row[0], row[1]});
    for (const auto& row : readTable(document, "Reason")) reasons_.push_back({"", row[0]});
    for (const auto& row : readTable(document, "On standard error")) {
      direct_.push_back({"", row[0]});
    }
  }

  void expectLogged(const log_line_t& line, const std::string& place) {
    const std::string label = "<" + line.category + "> ";
    ASSERT_TRUE(line.text.starts_with(label)) << place << ": " << line.text;
    const std::string text = line.text.substr(label.size());
    bool found = false;
    for (documented_t& row : lines_) {
      if (std::to_string(line.level) != row.level || !isOf(row, text)) continue;
      found = row.seen = true;
    }
    EXPECT_TRUE(found) << place << ", not documented: " << line.level << " " << text;
  }

  void expectPrinted(const std::string& text, const std::string& place) {
    for (const std::string& line : documentOf(text).lines) {
      bool found = false;
      for (documented_t& row : direct_) {
        if (matches(row.pattern, line)) found = row.seen = true;
      }
      EXPECT_TRUE(found) << place << ", not documented: " << line;
    }
  }

  void expectAllSeen() const {
    for (const auto* table : {&lines_, &reasons_, &direct_}) {
      EXPECT_FALSE(table->empty());
      for (const documented_t& row : *table) {
        EXPECT_TRUE(row.seen) << "nothing writes: " << row.level << " " << row.pattern;
      }
    }
  }

 private:
  bool isOf(const documented_t& row, const std::string& text) {
    if (!row.pattern.ends_with(REASON)) return matches(row.pattern, text);
    const std::string before = row.pattern.substr(0, row.pattern.size() - REASON.size());
    bool found = false;
    for (documented_t& reason : reasons_) {
      if (matches(before + reason.pattern, text)) found = reason.seen = true;
    }
    return found;
  }

  std::vector<documented_t> lines_;
  std::vector<documented_t> reasons_;
  std::vector<documented_t> direct_;
};

void throwText(void*, vlt_underlying_message_t*, vlt_underlying_message_t*) {
  throw std::runtime_error("jam");
}
void throwNumber(void*, vlt_underlying_message_t*, vlt_underlying_message_t*) { throw 42; }

class Operating : public HostFixture {
 protected:
  // Runs `action` and expects all its lines in the document.
  template <class Action>
  void watch(const std::string& place, const Action& action) {
    documented_.expectPrinted(stderrOf(action), place);
    for (const log_line_t& line : takeLog()) documented_.expectLogged(line, place);
  }

  void playSamples() {
    for (const std::string& name : ndjsonIn("samples")) {
      watch(name, [&] {
        LoadedCodec codec(library_, mapOf("tenantId", text("t4100")));
        for (const std::string& line : readDocument(name).lines) {
          Message message = reader_.parseMessage(line);
          codec.sendTowardsHost(message);
        }
      });
    }
  }

  void playCases() {
    for (const auto& [file, line] : tools::check::embeddedLines()) {
      tools::check::case_t played = tools::check::readCase(reader_.parseValue(line));
      watch(std::string(file) + " " + played.name, [&] { play(played); });
    }
  }

  // In a chain of the default level unless the case has another.
  void play(tools::check::case_t& played) {
    standin_set_default_log_level(played.log_level);
    void* const codec =
        library_.create("codec", "chain", played.configuration.underlying(), nullptr, nullptr);
    Received received;
    if (codec != nullptr) {
      library_.setNextTowardsHost(codec, &received, Received::take);
      auto* const send = played.towards_transport ? library_.sendBatchTowardsTransport
                                                  : library_.sendBatchTowardsHost;
      send(codec, played.in.data(), played.in.data() + played.in.size());
    }
    library_.destroy(codec);
    standin_set_default_log_level(3);
  }

  void misuseLinks() {
    LoadedCodec codec(library_, mapOf("tenantId", text("")));
    for (auto* const set : {library_.setNextTowardsHost, library_.setNextTowardsTransport}) {
      watch("a null link", [&] { set(codec.plugin(), nullptr, nullptr); });
      watch("no memory for a link", [&] {
        failAllocation(1, false);
        set(codec.plugin(), nullptr, throwText);
        failAllocation(0, false);
      });
      for (const vlt_batch_function link : {throwText, throwNumber}) {
        set(codec.plugin(), nullptr, link);
        watch("a link that throws", [&] {
          library_.sendBatchTowardsHost(codec.plugin(), nullptr, nullptr);
          library_.sendBatchTowardsTransport(codec.plugin(), nullptr, nullptr);
        });
      }
    }
  }

  void misuseKeys() {
    LoadedCodec codec(library_, mapOf("tenantId", text("")));
    for (data_t (*const key)() : {+[] { return data_t(); }, +[] { return custom(); }}) {
      map_t payload = eventPayload();
      payload.insert(text("odd"), data_t(std::int64_t{5}));
      for (auto entry : payload) {
        if (entry.first == text("odd")) entry.first = key();
      }
      Message message = notification(EVENT_PATH, std::move(payload));
      watch("an odd key", [&] { codec.sendTowardsHost(message); });
    }
  }

  // Each allocation of the host refused in turn, of a creation and of a traced notification.
  void exhaust() {
    standin_set_default_log_level(6);
    for (std::uint64_t n = 1; n < 40; ++n) {
      watch("no memory " + std::to_string(n), [&] {
        const data_t settings = mapOf("tenantId", text("t4100"));
        for (const data_t& each : {data_t(settings), data_t(mapOf())}) {
          standin_fail_allocation(n);
          library_.destroy(library_.create("codec", "chain", each.underlying(), nullptr, nullptr));
        }
        standin_fail_allocation(0);
        LoadedCodec codec(library_, settings);
        Message message = notification(EVENT_PATH, eventPayload());
        standin_fail_allocation(n);
        codec.sendTowardsHost(message);
        standin_fail_allocation(0);
      });
    }
  }

  PluginLibrary library_{VLT_PLUGIN_PATH};
  JsonReader reader_;
  Documented documented_;
};

} // namespace

TEST_F(Operating, TablesHaveExactlyTheWrittenLines) {
  playSamples();
  playCases();
  misuseLinks();
  misuseKeys();
  exhaust();
  documented_.expectAllSeen();
}

TEST_F(Operating, SettingsFailAndDefaultAsTheTableSays) {
  const auto rows = readTable(readDocument(OPERATING), "Key");
  EXPECT_EQ(rows.size(), 3u);
  for (const std::vector<std::string>& row : rows) {
    for (const data_t& wrong : {data_t(listOf()), data_t()}) {
      map_t settings = mapOf("tenantId", text("t4100"));
      if (has(settings, row[0].c_str())) settings = map_t();
      settings.insert(text(row[0].c_str()), data_t(wrong));
      const data_t configuration(std::move(settings));
      void* codec = nullptr;
      static_cast<void>(stderrOf([&] {
        codec = library_.create("codec", "chain", configuration.underlying(), nullptr, nullptr);
      }));
      EXPECT_EQ(codec != nullptr, row[2].starts_with("nothing.")) << row[0];
      library_.destroy(codec);
    }
  }
  takeLog();
  EXPECT_EQ(rows[1][0], "measurementSplittingChannel");
  LoadedCodec codec(library_, mapOf("tenantId", text("")));
  Message event = codec.converted(notification(MEASUREMENT_PATH, measurementPayload()));
  EXPECT_EQ(at(event.getMetadataMap(), "vlt.channel"), text(rows[1][1].c_str()));
}

// A block of another kind would look like an example and be none. scripts/test_package.sh runs the
// blocks of the packages.
TEST_F(Operating, EveryBlockIsRun) {
  for (const block_t& block : readBlocks(readDocument(OPERATING))) {
    EXPECT_THAT(block.info,
                AnyOf("console", "console debian", "console archive", "console bpftrace"))
        << placeOf(readDocument(OPERATING), block.line);
  }
}

} // namespace com::velanto::connectivity::test
