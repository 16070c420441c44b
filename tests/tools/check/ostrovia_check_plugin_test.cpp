// The built program: its output, the selection of checks, its exit statuses, its documents.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "identity/build_name.hpp"
#include "ndjson/json_reader.hpp"
#include "tests/support/pattern.hpp"
#include "tests/support/values.hpp"
#include "tests/tools/check/check_plugin_program.hpp"
#include "tools/check/selection.hpp"
#include "tools/host/file_identity.hpp"

namespace com::velanto::connectivity::test {

namespace {

using strings_t = std::vector<std::string>;

strings_t linesOf(const std::string& text) {
  std::istringstream stream(text);
  strings_t lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// Lines of a report, the rest of a claim at the end of its line.
strings_t unwrapped(const std::string& text) {
  const std::string indent(30, ' ');
  strings_t lines;
  for (const std::string& line : linesOf(text)) {
    if (line.starts_with(indent)) {
      lines.back() += line.substr(line.find_first_not_of(' ') - 1);
    } else {
      lines.push_back(line);
    }
  }
  return lines;
}

strings_t documentLines(const char* name = "check-plugin.md") {
  std::ifstream file(std::string(VLT_PROJECT_ROOT) + "/docs/" + name);
  strings_t lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

class OstroviaCheckPluginTest : public ::testing::Test {
 protected:
  const CheckPluginProgram program_;
};

const std::string LIBRARY = "libOstroviaNotifications2Codec.so";

// The lines below the library's path.
std::string linesOfBuilds(const std::string& path) {
  const tools::file_identity_t library = tools::identityOf(path);
  return "  size " + std::to_string(std::filesystem::file_size(path)) + " bytes, build id " +
         library.build_id + "\n  SHA-256 " + library.sha256 + "\n  build unknown\n  checked by " +
         VLT_BUILD_NAME + "\n";
}

} // namespace

TEST_F(OstroviaCheckPluginTest, GoodBuildPassesEverything) {
  const run_t run = program_.run(UNHURRIED + "--seed 1 " + LIBRARY);
  EXPECT_EQ(run.status, 0) << run.out;
  EXPECT_EQ(run.diagnostics, "");
  strings_t lines = unwrapped(run.out);
  ASSERT_GT(lines.size(), 60U);
  const int skipped = heapIsReplaced() ? 3 : 0;
  std::erase_if(lines, [](const auto& line) { return line.starts_with("  "); }); // of the builds
  const std::size_t checks = lines.size() - 3;
  EXPECT_EQ(lines[checks + 1], LIBRARY);
  EXPECT_EQ(lines.back(), std::to_string(checks) + " checks: " +
                              std::to_string(checks - static_cast<std::size_t>(skipped)) +
                              " ok, 0 warned, 0 failed, 0 crashed, 0 hung, " +
                              std::to_string(skipped) + " skipped");
  EXPECT_EQ(lines[7],
            "ok    loading.loads                      the library is loaded with all its "
            "symbols bound, and unloaded");
}

// A build made from the documents alone: a check that it fails demands more than they state.
TEST_F(OstroviaCheckPluginTest, PlainBuildPassesAllRequiredChecks) {
  const run_t run = program_.run(UNHURRIED + "--seed 1 " VLT_PLAIN_BUILD_PATH);
  EXPECT_EQ(run.status, 0) << run.out;
}

TEST_F(OstroviaCheckPluginTest, FailedAdviceIsAWarning) {
  const std::string arguments = "--seed 1 --only nulls.* " + faultyPlugin("accepts_null_function");
  const run_t run = program_.run(arguments);
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.out.find("WARN  nulls.batch-function"), std::string::npos) << run.out;
  EXPECT_EQ(linesOf(run.out).back(),
            "6 checks: 5 ok, 1 warned, 0 failed, 0 crashed, 0 hung, 0 skipped");
  const run_t strict = program_.run("--strict " + arguments);
  EXPECT_EQ(strict.status, 1);
  EXPECT_EQ(linesOf(strict.out).back(),
            "6 checks: 5 ok, 0 warned, 1 failed, 0 crashed, 0 hung, 0 skipped");
}

TEST_F(OstroviaCheckPluginTest, ClosedPipeIsNoError) {
  const run_t run = program_.shell("{ ostrovia-check-plugin --only 'versions.*' --only 'nulls.*' " +
                                   LIBRARY + "; echo \"status $?\" >&2; } | head -1");
  EXPECT_EQ(run.diagnostics, "status 0\n");
  EXPECT_EQ(linesOf(run.out).size(), 1U);
  const run_t failed = program_.shell("{ ostrovia-check-plugin --only 'versions.*' " +
                                      faultyPlugin("wrong_interface_version") +
                                      "; echo \"status $?\" >&2; } | true");
  EXPECT_EQ(failed.diagnostics, "status 1\n");
}

TEST_F(OstroviaCheckPluginTest, NoLineExceeds80Columns) {
  for (const char* const fault : {"none", "misspells_errors", "crashes_on_null"}) {
    for (const std::string& line : linesOf(program_.run(faultyPlugin(fault)).out)) {
      EXPECT_LE(line.size(), 80U) << line;
    }
  }
}

TEST_F(OstroviaCheckPluginTest, GoodRecorderPassesEverything) {
  const run_t run = program_.run(UNHURRIED + "--json --seed 1 " VLT_RECORDER_PATH);
  EXPECT_EQ(run.status, 0) << run.out;
  EXPECT_EQ(run.diagnostics, "");
  for (const auto& [name, outcome] : outcomesOf(run.out)) {
    EXPECT_TRUE(outcome == "ok" || (outcome == "skipped" && heapIsReplaced())) << name;
  }
}

TEST_F(OstroviaCheckPluginTest, OtherSeedsPassToo) {
  for (const char* const seed : {"2", "3", "18446744073709551615"}) {
    std::string arguments = UNHURRIED;
    arguments.append("--only 'random.*' --seed ").append(seed).append(" ").append(LIBRARY);
    EXPECT_EQ(program_.run(arguments).status, 0) << seed;
  }
}

TEST_F(OstroviaCheckPluginTest, SeedIsAnotherEachTimeAndPrinted) {
  const std::string arguments = "--only versions.interface " + LIBRARY;
  const std::string first = linesOf(program_.run(arguments).out).at(4);
  const std::string second = linesOf(program_.run(arguments).out).at(4);
  EXPECT_TRUE(Pattern("^  seed [0-9]+$").isIn(first)) << first;
  EXPECT_NE(first, second);
}

TEST_F(OstroviaCheckPluginTest, FailureShowsExpectedAndActualValues) {
  const run_t run = program_.shell(
      "ln -s " + faultyPlugin("wrong_interface_version") +
      " . && ostrovia-check-plugin --seed 1 --only versions.interface wrong_interface_version.so");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out,
            "FAIL  versions.interface                 the interface version is 4, before any\n"
            "                                         codec is made\n"
            "        docs/host-interface.md, \"Versions\"\n"
            "        interface version: expected 4, came 3\n"
            "\n"
            "wrong_interface_version.so\n  seed 1\n" +
                linesOfBuilds(faultyPlugin("wrong_interface_version")) +
                "1 check: 0 ok, 0 warned, 1 failed, 0 crashed, 0 hung, 0 skipped\n");
}

TEST_F(OstroviaCheckPluginTest, PathOfTheLibraryIsOneLine) {
  const std::string path = "a folder/" + std::string(90, 'n') + ".so";
  const run_t run =
      program_.shell("mkdir 'a folder' && ln -s \"$PWD\"/" + LIBRARY + " '" + path +
                     "' && ostrovia-check-plugin --only versions.interface '" + path + "'");
  EXPECT_NE(run.out.find("\n" + path + "\n  seed "), std::string::npos) << run.out;
}

TEST_F(OstroviaCheckPluginTest, ClosedStandardOutputIsStatus2) {
  const run_t run = program_.shell("ostrovia-check-plugin --list >&-");
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.diagnostics, "ostrovia-check-plugin: cannot write to standard output\n");
}

TEST_F(OstroviaCheckPluginTest, CrashAndHangDiffer) {
  const run_t crash =
      program_.run("--strict --only nulls.plugin " + faultyPlugin("crashes_on_null"));
  EXPECT_EQ(crash.status, 1);
  const strings_t crashed = linesOf(crash.out);
  EXPECT_EQ(crashed[0].substr(0, 18), "CRASH nulls.plugin");
  if (!heapIsReplaced()) { // AddressSanitizer ends the process itself
    EXPECT_EQ(crashed[3], "        signal 11, SIGSEGV, Segmentation fault");
  }
  const run_t hang = program_.run("--strict --timeout 0.2 --only lifecycle.hooks-call-nothing " +
                                  faultyPlugin("hangs_in_start"));
  EXPECT_EQ(hang.status, 1);
  const strings_t hung = unwrapped(hang.out);
  EXPECT_EQ(hung[0].substr(0, 34), "HANG  lifecycle.hooks-call-nothing");
  EXPECT_EQ(hung[2], "        did not end in time");
}

TEST_F(OstroviaCheckPluginTest, LibraryThatCannotBeLoadedIsStatus2) {
  const run_t run =
      program_.run("--only 'library.*' --only loading.loads --only versions.product --seed 1 " +
                   faultyPlugin("needs_what_is_nowhere"));
  EXPECT_EQ(run.status, 2);
  const strings_t lines = unwrapped(run.out);
  EXPECT_EQ(lines[1].substr(0, 33), "ok    library.exports-the-twelve ");
  const auto loading = std::find_if(lines.begin(), lines.end(), [](const std::string& line) {
    return line.rfind("skip  loading.loads", 0) == 0;
  });
  ASSERT_NE(loading, lines.end()) << run.out;
  EXPECT_EQ(loading[1],
            "        the library cannot be loaded: libnowhere.so.7: cannot open shared object");
  EXPECT_EQ(loading[2], "        file: No such file or directory");
  EXPECT_EQ(loading[3].substr(0, 22), "skip  versions.product");
  if (!heapIsReplaced()) {
    EXPECT_EQ(lines[4].substr(0, 29), "WARN  library.needs-no-others");
    EXPECT_EQ(lines[6], "        needed libraries:");
    EXPECT_EQ(lines[8], "          came      libnowhere.so.7");
  }
}

TEST_F(OstroviaCheckPluginTest, FileThatIsNoLibraryIsStatus2WithOneLine) {
  for (const auto& [path, fault] : {std::pair{"/etc/passwd", "no ELF file"},
                                    {"/dev/null", "no ELF file"},
                                    {"/etc", "Is a directory"},
                                    {"/nowhere/at-all.so", "No such file or directory"}}) {
    const run_t run = program_.run(path);
    EXPECT_EQ(run.status, 2) << path;
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.diagnostics, std::string("ostrovia-check-plugin: ") + path + ": " + fault + "\n");
  }
}

TEST_F(OstroviaCheckPluginTest, SystemLibraryIsNoPlugIn) {
  const run_t run = program_.run("--json --only library.exports-the-twelve --only batches.many " +
                                 std::string(VLT_CLIENT_LIBRARY_PATH));
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.out.find("is no plug-in: it has no function "
                         "vlt_plugin_api_version_OstroviaNotifications2Codec"),
            std::string::npos)
      << run.out;
}

TEST_F(OstroviaCheckPluginTest, SelectionIsByPattern) {
  const auto names = [&](const std::string& arguments) {
    std::string all;
    for (const std::string& line : unwrapped(program_.run("--list " + arguments).out)) {
      all += line.substr(0, line.find(' ')) + " ";
    }
    return all;
  };
  EXPECT_EQ(names("--only 'versions.*' --skip versions.p*"),
            "versions.interface versions.call-no-host ");
  EXPECT_EQ(names("--only batches.many --only 'nulls.nam?s'"), "nulls.names batches.many ");
}

TEST_F(OstroviaCheckPluginTest, WrongUseIsStatus2WithOneLine) {
  const std::pair<const char*, const char*> rows[] = {
      {"", "which library? See --help"},
      {"--list --json", "--list takes no --json"},
      {"--tiemout 3 x.so", "unknown option '--tiemout', did you mean '--timeout'?"},
      {"--unknown x.so", "unknown option '--unknown'; see --help"},
      {"'--\x1b[2J' x.so", "unknown option '--\\u001b[2J'; see --help"},
      {"--only nothing.* next.so", "no check is named 'nothing.*'; see --list"},
      {"--skip nothing.* next.so", "no check is named 'nothing.*'; see --list"},
      {"--only batches.many --skip 'b*' next.so", "no check is left to run"},
      {"--timeout 0 x.so", "--timeout: '0' is not a number of seconds between 0.001 and 86400"},
      {"--timeout nan x.so", "--timeout: 'nan' is not a number of seconds between 0.001 and 86400"},
      {"--seed -1 x.so", "--seed: '-1' is not a whole number from 0 to 2^64-1"},
      {"x.so y.so", "unexpected argument 'y.so'"},
  };
  for (const auto& [arguments, complaint] : rows) {
    const run_t run = program_.run(arguments);
    EXPECT_EQ(run.status, 2) << arguments;
    EXPECT_EQ(run.out, "") << arguments;
    EXPECT_EQ(run.diagnostics, std::string("ostrovia-check-plugin: ") + complaint + "\n");
  }
}

TEST_F(OstroviaCheckPluginTest, FullDeviceIsStatus2) {
  const run_t run = program_.shell("ostrovia-check-plugin --list > /dev/full");
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.diagnostics, "ostrovia-check-plugin: cannot write to standard output\n");
}

TEST_F(OstroviaCheckPluginTest, JsonIsOneDocument) {
  const run_t run =
      program_.run("--json --seed 5 --only versions.* " + faultyPlugin("wrong_product_version"));
  EXPECT_EQ(run.status, 1);
  JsonReader reader;
  data_t document = reader.parseValue(run.out);
  auto& members = document.get<map_t>();
  EXPECT_EQ(at(members, "seed"), whole(5));
  const tools::file_identity_t library = tools::identityOf(faultyPlugin("wrong_product_version"));
  EXPECT_EQ(at(members, "sha256"), text(library.sha256.c_str()));
  EXPECT_EQ(at(members, "build_id"), text(library.build_id.c_str()));
  EXPECT_TRUE(at(members, "build").empty());
  EXPECT_EQ(at(members, "loads"), truth(true));
  EXPECT_EQ(at(members, "counts"),
            data_t(mapOf("ok", whole(2), "warned", whole(0), "failed", whole(2), "crashed",
                         whole(0), "hung", whole(0), "skipped", whole(0))));
  data_t product = at(members, "checks").get<list_t>()[1];
  EXPECT_EQ(at(product.get<map_t>(), "outcome"), text("failed"));
  EXPECT_EQ(at(product.get<map_t>(), "differences"),
            listOf(mapOf("where", text("product version"), "expected", text("10.15.4.1"), "came",
                         text("10.15.4.2"))));
}

// A terminal of its own, from util-linux; without it there is nothing to see.
TEST_F(OstroviaCheckPluginTest, ColourIsForTerminalsOnly) {
  if (std::system("command -v script > /dev/null") != 0) GTEST_SKIP() << "no terminal to be had";
  const auto on_terminal = [&](const std::string& before) {
    return program_
        .shell("script --quiet --command \"" + before +
               "ostrovia-check-plugin --only versions.interface " + LIBRARY + "\" /dev/null")
        .out;
  };
  EXPECT_NE(on_terminal("env -u NO_COLOR ").find("\x1b[32mok   \x1b[0m versions.interface"),
            std::string::npos);
  EXPECT_EQ(on_terminal("NO_COLOR=1 ").find('\x1b'), std::string::npos);
  EXPECT_EQ(program_.run("--only versions.interface " + LIBRARY).out.find('\x1b'),
            std::string::npos);
}

TEST_F(OstroviaCheckPluginTest, ExamplesOfTheHelpRun) {
  const run_t help = program_.run("--help");
  EXPECT_EQ(help.status, 0);
  const strings_t lines = linesOf(help.out);
  ASSERT_EQ(lines[0], "Examples:");
  int examples = 0;
  for (const std::string& line : lines) {
    if (line.rfind("  ostrovia-check-plugin ", 0) != 0) continue;
    ++examples;
    const run_t run = program_.shell(line);
    EXPECT_EQ(run.status, 0) << line;
    EXPECT_EQ(run.diagnostics, "") << line;
  }
  EXPECT_EQ(examples, 5);
  EXPECT_FALSE(outcomesOf(program_.file("report.json")).empty());
}

TEST_F(OstroviaCheckPluginTest, VersionIsTheProjects) {
  EXPECT_EQ(program_.run("--version").out,
            "ostrovia-check-plugin" + std::string(VLT_BUILD_NAME).substr(22) + "\n");
}

TEST_F(OstroviaCheckPluginTest, DocumentListsTheChecks) {
  const Pattern row(
      R"(^\| `([a-z]+\.[a-z0-9-]+)` \| (both|codec|recorder) \| ([^|]+) \| (.+) \|$)");
  std::map<std::string, strings_t> documented; // by the word in the second column
  for (const std::string& line : documentLines()) {
    for (const Pattern::match_t& cells : row.allIn(line)) {
      const std::string check =
          cells[1] + " " + cells[4] + (cells[3] == "advised" ? " (advised)" : "");
      documented["any"].push_back(check);
      if (cells[2] != "recorder") documented["codec"].push_back(check);
      if (cells[2] != "codec") documented["recorder"].push_back(check);
    }
  }
  for (const auto& [plugin, path] : {std::pair{"any", std::string()},
                                     {"codec", LIBRARY},
                                     {"recorder", std::string(VLT_RECORDER_PATH)}}) {
    strings_t listed;
    for (const std::string& line : unwrapped(program_.run("--list " + path).out)) {
      listed.push_back(Pattern("^([^ ]+) +").replacedIn(line, "$1 "));
    }
    EXPECT_EQ(documented[plugin], listed) << plugin;
  }
}

TEST_F(OstroviaCheckPluginTest, DocumentNamesTheClausesOfTheChecks) {
  std::map<std::string, std::string> documented;
  const Pattern row(R"(^\| `([a-z]+\.[a-z0-9-]+)` \| [a-z]+ \| ([^|]+) \|)");
  for (const std::string& line : documentLines()) {
    for (const Pattern::match_t& cells : row.allIn(line)) documented[cells[1]] = cells[2];
  }
  const strings_t interface = documentLines("host-interface.md");
  for (const tools::check::check_t& check : tools::check::allChecks()) {
    const bool advised = check.clause == tools::check::ADVISED_ONLY;
    EXPECT_EQ(documented[check.name], advised ? "advised" : check.clause) << check.name;
    EXPECT_EQ(std::count(interface.begin(), interface.end(),
                         std::string("## ") + (advised ? "Versions" : check.clause)),
              1)
        << check.clause;
  }
}

// As FailureShowsExpectedAndActualValues has it.
TEST_F(OstroviaCheckPluginTest, DocumentShowsAFailure) {
  const strings_t failure = linesOf(
      program_.run("--only versions.interface " + faultyPlugin("wrong_interface_version")).out);
  const strings_t document = documentLines();
  auto shown = std::find(document.begin(), document.end(), "    " + failure.at(0));
  ASSERT_NE(shown, document.end()) << failure[0];
  for (const std::size_t line : {0U, 1U, 2U, 3U}) EXPECT_EQ(*shown++, "    " + failure.at(line));
}

} // namespace com::velanto::connectivity::test
