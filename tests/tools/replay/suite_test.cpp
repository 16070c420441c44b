// --suite of the built tool.
#include "tools/replay/suite.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "identity/build_name.hpp"
#include "tests/support/pattern.hpp"
#include "tests/tools/program.hpp"

namespace com::velanto::connectivity::test {

namespace {

const std::string BUILD = VLT_BUILD_NAME;

class SuiteTest : public Program {
 protected:
  SuiteTest() {
    std::filesystem::create_directory(suite_);
    folder_.write("suite/b.ndjson", eventLine("1"));
    folder_.write("suite/a.ndjson", textlessLine("2") + "x\n");
  }

  const std::string suite_ = folder_.path("suite");
};

} // namespace

TEST_F(SuiteTest, UpdateMakesTheFilesForTheNextRun) {
  const result_t made = run({"--suite", "suite", "--update"});
  EXPECT_EQ(made.status, 0);
  EXPECT_EQ(made.diagnostics, "made    a\nmade    b\n2 cases, 0 failed\n");
  EXPECT_EQ(
      folder_.read("suite/a.golden").rfind("{\"at\":\"a.ndjson:1\",\"outcome\":\"dropped\"", 0),
      0u);
  const result_t run_again = run({"--suite", "suite"});
  EXPECT_EQ(run_again.status, 0);
  EXPECT_EQ(run_again.diagnostics, "ok      a\nok      b\n2 cases, 0 failed\n");
  EXPECT_EQ(run_again.out, "");
}

TEST_F(SuiteTest, DifferingCaseFailsAndTheOthersRun) {
  run({"--suite", "suite", "--update"});
  folder_.write("suite/a.ndjson", eventLine("2") + "x\n");
  const result_t result = run({"--suite", "suite"});
  EXPECT_EQ(result.status, 5);
  EXPECT_EQ(result.diagnostics.rfind("FAILED  a\n"
                                     "--- suite/a.golden:1\n"
                                     "+++ a.ndjson:1\n"
                                     "@ outcome\n"
                                     "- \"dropped\"\n"
                                     "+ \"converted\"\n",
                                     0),
            0u)
      << result.diagnostics;
  EXPECT_NE(result.diagnostics.find("\nok      b\n2 cases, 1 failed\n"), std::string::npos);
}

TEST_F(SuiteTest, OneCaseIsCalledOne) {
  std::filesystem::remove(folder_.path("suite/b.ndjson"));
  EXPECT_EQ(run({"--suite", "suite", "--update"}).diagnostics, "made    a\n1 case, 0 failed\n");
}

TEST_F(SuiteTest, CaseOfMalformedLinesRunsToItsEnd) {
  std::string lines;
  for (int i = 0; i < 30; ++i) lines += "x\n";
  folder_.write("suite/a.ndjson", lines + eventLine("1"));
  EXPECT_EQ(run({"--suite", "suite", "--update"}).status, 0);
  EXPECT_NE(folder_.read("suite/a.golden").find("{\"at\":\"a.ndjson:31\",\"outcome\":"),
            std::string::npos);
}

TEST_F(SuiteTest, CaseWithoutAGoldenFileFails) {
  const result_t result = run({"--suite", "suite"});
  EXPECT_EQ(result.status, 5);
  EXPECT_EQ(result.diagnostics,
            "FAILED  a\nthere is no suite/a.golden; --update makes it\n"
            "FAILED  b\nthere is no suite/b.golden; --update makes it\n"
            "2 cases, 2 failed\n");
}

TEST_F(SuiteTest, WhatDoesNotRunFails) {
  run({"--suite", "suite", "--update"});
  folder_.write("suite/c.ndjson.gz", "");
  folder_.write("suite/d.golden", "");
  std::filesystem::create_directory(folder_.path("suite/e.ndjson"));
  folder_.write("suite/.hidden.golden", "");
  folder_.write("suite/notes.txt", "");
  for (const char* const mode : {"", "--update"}) {
    std::vector<std::string> arguments = {"--suite", "suite", "--junit", "report.xml"};
    if (*mode != '\0') arguments.emplace_back(mode);
    const result_t result = run(arguments);
    EXPECT_EQ(result.status, 5) << mode;
    EXPECT_EQ(result.diagnostics.substr(result.diagnostics.find("FAILED")),
              "FAILED  c.ndjson.gz\n"
              "suite/c.ndjson.gz does not run: its name must end in .ndjson\n"
              "FAILED  d.golden\n"
              "suite/d.golden has no case d.ndjson\n"
              "FAILED  e.ndjson\n"
              "suite/e.ndjson is a folder: its cases do not run\n"
              "5 cases, 3 failed\n");
    EXPECT_NE(folder_.read("report.xml").find("message=\"suite/d.golden has no case d.ndjson\">"),
              std::string::npos);
  }
}

TEST_F(SuiteTest, ReportHasTheFormOfJUnit) {
  run({"--suite", "suite", "--update"});
  folder_.write("suite/b.ndjson", passingLine("\"<&>\\u0001\""));
  EXPECT_EQ(run({"--suite", "suite", "--junit", "report.xml"}).status, 5);
  static const Pattern TIME(R"(time="[0-9]+\.[0-9]{6}")");
  const std::string report = TIME.replacedIn(folder_.read("report.xml"), "time=T");
  EXPECT_EQ(
      report.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                   "<testsuite name=\"suite\" tests=\"2\" failures=\"1\" errors=\"0\" time=T>\n"
                   "  <properties>\n"
                   "    <property name=\"tool\" value=\"" +
                       BUILD +
                       "\"/>\n"
                       "    <property name=\"plug-in\" value=\"" +
                       BUILD +
                       "\"/>\n"
                       "  </properties>\n"
                       "  <testcase classname=\"suite\" name=\"a\" time=T/>\n"
                       "  <testcase classname=\"suite\" name=\"b\" time=T>\n"
                       "    <failure message=\"1 of 1 messages differ from suite/b.golden\">--- "
                       "suite/b.golden:1\n",
                   0),
      0u)
      << report;
  EXPECT_NE(report.find("&lt;&amp;&gt;"), std::string::npos);
  EXPECT_NE(report.find("</failure>\n  </testcase>\n</testsuite>\n"), std::string::npos);
}

TEST_F(SuiteTest, CaseThatCannotRunIsAnError) {
  run({"--suite", "suite", "--update"});
  EXPECT_EQ(run({"--suite", "suite", "--junit", "r", "--plugin", "/nowhere.so"}).status, 4);
  EXPECT_NE(folder_.read("r").find("failures=\"0\" errors=\"2\""), std::string::npos);
  EXPECT_NE(
      folder_.read("r").find("name=\"plug-in\" value=\"/nowhere.so: No such file or directory\""),
      std::string::npos);
}

TEST_F(SuiteTest, WrongUseIsNamed) {
  std::filesystem::create_directory(folder_.path("empty"));
  const std::vector<std::pair<std::vector<std::string>, std::string>> rows = {
      {{"--suite", "empty"}, "empty has no case, no file NAME.ndjson"},
      {{"--update"}, "--update and --junit need --suite"},
      {{"--suite", "suite", "x"},
       "--suite takes no FILES, --expect, --expect-events, --record, --dropped, --redacted, "
       "--report, --summary, --explain or --follow"}};
  for (const auto& [arguments, complaint] : rows) {
    const result_t result = run(arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.diagnostics, "ostrovia-replay: " + complaint + "\n");
  }
  EXPECT_EQ(run({"--suite", "/nowhere"}).status, 7);
}

} // namespace com::velanto::connectivity::test
