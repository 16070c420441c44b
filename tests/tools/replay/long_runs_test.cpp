// Long runs: compressed input, repetition, threads, progress, Ctrl-C; all with the built tool.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>
#include <zlib.h>
#include <zstd.h>

#include <csignal>
#include <cstdlib>

#include "tests/tools/program.hpp"

namespace com::velanto::connectivity::test {

namespace {

const char* const TWO_EVENTS = "{\"metadata\":{},\"payload\":1}\n{\"metadata\":{},\"payload\":2}\n";

std::string gzipped(const std::string& text) {
  z_stream state{};
  constexpr int GZIP = 16;
  EXPECT_EQ(deflateInit2(&state, 6, Z_DEFLATED, MAX_WBITS + GZIP, 8, Z_DEFAULT_STRATEGY), Z_OK);
  std::string out(deflateBound(&state, text.size()) + 100, '\0');
  state.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  state.avail_in = static_cast<uInt>(text.size());
  state.next_out = reinterpret_cast<Bytef*>(out.data());
  state.avail_out = static_cast<uInt>(out.size());
  EXPECT_EQ(deflate(&state, Z_FINISH), Z_STREAM_END);
  out.resize(state.total_out);
  deflateEnd(&state);
  return out;
}

std::string zstandard(const std::string& text) {
  std::string out(ZSTD_compressBound(text.size()), '\0');
  out.resize(ZSTD_compress(out.data(), out.size(), text.data(), text.size(), 3));
  return out;
}

// Lines that do not compress to nothing.
std::string manyLines() {
  std::string text;
  for (int i = 0; i < 30000; ++i) {
    std::string payload = "\"";
    payload.append(std::to_string(i * 7919 % 30011)).append("\"");
    text += passingLine(payload);
  }
  return text;
}

class LongRunsTest : public Program {};

} // namespace

TEST_F(LongRunsTest, LinesBeyondTheBoundAreMalformed) {
  const std::string mebibyte = passingLine("\"" + std::string((1 << 20) - 14, 'x') + "\"");
  input_ =
      mebibyte + passingLine("\"" + std::string((1 << 20) - 13, 'x') + "\"") + passingLine("2");
  for (const char* const threads : {"1", "2"}) {
    const result_t result = run({"--max-line", "1", "--threads", threads});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.out.size(), 14 + mebibyte.size() + 28) << threads;
    EXPECT_EQ(result.diagnostics,
              "<stdin>:2: longer than 1 MiB; --max-line sets the bound\n"
              "read 3, reached the host 2, dropped 0, malformed 1, T ms\n");
  }
  EXPECT_EQ(run({}).status, 0);
}

TEST_F(LongRunsTest, CompressedLinesWithoutEndTakeBoundedMemory) {
  const result_t result = runShell(
      "head -c 100000000 /dev/zero | tr '\\0' x | gzip -1 | ostrovia-replay --max-line 1 | cat");
  EXPECT_EQ(result.diagnostics,
            "<stdin>:1: longer than 1 MiB; --max-line sets the bound\n"
            "read 1, reached the host 0, dropped 0, malformed 1, T ms\n");
#ifndef VLT_SANITIZED // AddressSanitizer keeps freed memory back
  EXPECT_LT(result.memory, 90'000);
#endif
}

TEST_F(LongRunsTest, MemoryThatRunsOutIsCalledThat) {
#ifdef VLT_SANITIZED
  GTEST_SKIP() << "AddressSanitizer needs more than any bound";
#endif
  const result_t result = runShell(
      "(printf '{\"payload\":\"'; head -c 50000000 /dev/zero | tr '\\0' x; printf '\"}\\n') |"
      "(ulimit -v 150000; ostrovia-replay)");
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: memory has run out; --max-line bounds the lines of the input\n");
}

TEST_F(LongRunsTest, ThreadsThatTheSystemRefusesAreNamed) {
  const result_t result =
      runShell("ulimit -s 100000000000 && ostrovia-replay --threads 2 < /dev/null");
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: the system does not start 2 threads: Resource temporarily "
            "unavailable\n");
}

TEST_F(LongRunsTest, CompressedInputIsKnownByItsFirstBytes) {
  for (const auto& compress : {&gzipped, &zstandard}) {
    input_ = compress(passingLine("1")) + compress(passingLine("2")); // two members in a row
    EXPECT_EQ(run({}).out, TWO_EVENTS);
    EXPECT_EQ(run({folder_.write("file", input_)}).out, TWO_EVENTS);
  }
}

TEST_F(LongRunsTest, CompressedInputMayBeLarge) {
  const std::string text = manyLines();
  input_ = text;
  out_path_ = folder_.path("plain");
  run({});
  const std::string expected = folder_.read("plain");
  out_path_ = folder_.path("out");
  for (const auto& compress : {&gzipped, &zstandard}) {
    input_ = compress(text);
    EXPECT_EQ(run({}).out, expected);
  }
}

TEST_F(LongRunsTest, BrokenCompressionIsAnErrorAfterItsLines) {
  const std::string text = manyLines();
  const std::string gzip = gzipped(text);
  const std::string zstd = zstandard(text);
  const auto complaint_about = [this](const std::string& input) {
    input_ = input;
    const result_t result = run({});
    EXPECT_EQ(result.status, 7);
    // A run that has read nothing has no figures.
    const bool has_read = result.diagnostics.find("too early") != std::string::npos;
    EXPECT_EQ(result.diagnostics.find(
                  "\nostrovia-replay: incomplete: the input cannot be read further\nread ") !=
                  std::string::npos,
              has_read);
    return result.diagnostics.substr(0, result.diagnostics.find('\n') + 1);
  };
  EXPECT_EQ(complaint_about(gzip.substr(0, gzip.size() - 20)),
            "ostrovia-replay: <stdin>: the gzip data ends too early\n");
  EXPECT_EQ(folder_.read("out").rfind("{\"metadata\":{},\"payload\":\"0\"}\n", 0), 0u);
  EXPECT_EQ(complaint_about(gzip.substr(0, 50) + std::string(100, '\xff')),
            "ostrovia-replay: <stdin>: the gzip data is damaged\n");
  EXPECT_EQ(complaint_about(zstd.substr(0, zstd.size() - 20)),
            "ostrovia-replay: <stdin>: the Zstandard data ends too early\n");
  std::string damaged = zstd;
  damaged.replace(50, 5000, 5000, '\xff');
  EXPECT_EQ(complaint_about(damaged), "ostrovia-replay: <stdin>: the Zstandard data is damaged\n");
}

TEST_F(LongRunsTest, ForeignFormatsAreNamedOnce) {
  const std::vector<std::pair<std::string, const char*>> rows = {
      {std::string("\xFD\x37\x7A\x58\x5A\0", 6) + "\nx\nx\n",
       "is compressed with xz, expected gzip, Zstandard or no compression"},
      {"\xFF\xFE{\n}\n", "is UTF-16, expected UTF-8"},
      {"\xFE\xFF{\n}\n", "is UTF-16, expected UTF-8"}};
  for (const auto& [input, reason] : rows) {
    input_ = input;
    const result_t result = run({});
    EXPECT_EQ(result.status, 7);
    EXPECT_EQ(result.diagnostics, std::string("ostrovia-replay: <stdin>: ") + reason + "\n");
  }
}

TEST_F(LongRunsTest, LineWithACompressionMarkIsMalformed) {
  input_ = "(x\n" + passingLine("1") + passingLine("2");
  const result_t result = run({});
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.out, TWO_EVENTS);
}

TEST_F(LongRunsTest, InputIsReadAsOftenAsAskedFor) {
  const std::string file = folder_.write("file", passingLine("1") + "x\n");
  const result_t result = run({file, file, "--repeat", "3"});
  EXPECT_EQ(result.status, 3);
  EXPECT_NE(result.diagnostics.find("read 12, reached the host 6, dropped 0, malformed 6"),
            std::string::npos);
  EXPECT_NE(result.diagnostics.find(file + ":2:1: "), std::string::npos);
  const result_t refused = run({"--repeat", "2"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.diagnostics, "ostrovia-replay: --repeat cannot read standard input again\n");
}

TEST_F(LongRunsTest, ThreadsChangeNothingThatIsWritten) {
  for (int i = 0; i < 5000; ++i) {
    const std::string id = std::to_string(i);
    input_ += i % 7 == 0 ? textlessLine(id) : i % 11 == 0 ? "x\n" : eventLine(id);
  }
  const std::vector<std::string> options = {"--dropped", "dropped", "--record", "golden"};
  const result_t one = run(options);
  const std::string dropped = folder_.read("dropped");
  const std::string golden = folder_.read("golden");
  for (const char* threads : {"2", "3", "16"}) {
    std::vector<std::string> more = options;
    more.insert(more.end(), {"--threads", threads});
    const result_t many = run(more);
    EXPECT_EQ(many.status, one.status);
    EXPECT_TRUE(many.out == one.out) << threads;
    EXPECT_TRUE(many.diagnostics == one.diagnostics) << threads;
    EXPECT_TRUE(folder_.read("dropped") == dropped) << threads;
    EXPECT_TRUE(folder_.read("golden") == golden) << threads;
  }
}

TEST_F(LongRunsTest, EveryThreadHasAChainOfItsOwn) {
  const result_t result =
      run({"--plugin", VLT_FAULTY_PLUGIN_PATH, "--tenant-id", "late", "--threads", "3"});
  EXPECT_EQ(result.status, 6);
  EXPECT_NE(result.diagnostics.find("reached the host 3,"), std::string::npos); // one of each
}

TEST_F(LongRunsTest, FailureToReadEndsThreadsAfterEarlierLines) {
  std::string text;
  for (int i = 0; i < 3000; ++i) text += passingLine("1");
  const std::string good = folder_.write("good", text);
  const std::string bad = folder_.write("bad", gzipped(text).substr(0, 30));
  const result_t result = run({"--threads", "2", good, bad});
  EXPECT_EQ(result.status, 7);
  EXPECT_GE(result.out.size(), 3000 * std::string("{\"metadata\":{},\"payload\":1}\n").size());
}

TEST_F(LongRunsTest, InterruptedRunEndsWithItsFigures) {
  for (const std::vector<std::string>& options :
       {std::vector<std::string>{}, {"--threads", "2"}, {"--summary"}}) {
    int in[2] = {};
    ASSERT_EQ(pipe2(in, O_CLOEXEC), 0);
    in_descriptor_ = in[0];
    const pid_t child = start(VLT_REPLAY_PATH, options);
    const std::string line = passingLine("1");
    ASSERT_EQ(write(in[1], line.data(), line.size()), static_cast<ssize_t>(line.size()));
    awaitIdle(child, in[0]);
    kill(child, SIGINT);
    const result_t result = waitFor(child);
    close(in[0]);
    close(in[1]);
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.out, "{\"metadata\":{},\"payload\":1}\n");
    EXPECT_THAT(result.diagnostics,
                ::testing::HasSubstr("read 1, reached the host 1, dropped 0, malformed 0, T ms"));
  }
}

TEST_F(LongRunsTest, WaitForTheFirstByteCanBeInterrupted) {
  int in[2] = {};
  ASSERT_EQ(pipe2(in, O_CLOEXEC), 0);
  in_descriptor_ = in[0];
  const pid_t child = start(VLT_REPLAY_PATH, {});
  awaitIdle(child, in[0]);
  kill(child, SIGINT);
  const result_t result = waitFor(child);
  close(in[0]);
  close(in[1]);
  EXPECT_EQ(result.status, 130);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: incomplete: interrupted\n"
            "read 0, reached the host 0, dropped 0, malformed 0, T ms\n");
}

TEST_F(LongRunsTest, FilesAndVerdictsNeedNoReader) {
  std::string text;
  for (int i = 0; i < 3000; ++i) text += eventLine("1") + textlessLine("2");
  folder_.write("in.ndjson", text);
  folder_.write("changed.ndjson", text + textlessLine("3"));
  run({"--quiet", "--record", "golden", "--dropped", "lost", "in.ndjson"});
  const auto status_without_reader = [this](const std::string& arguments) {
    return runShell("{ ostrovia-replay --quiet --log-level 2 " + arguments +
                    " 2> /dev/null; echo $? > status; } | head -1; cat status >&2")
        .diagnostics;
  };
  EXPECT_EQ(status_without_reader("--record g --dropped l in.ndjson"), "0\n");
  EXPECT_TRUE(folder_.read("g") == folder_.read("golden"));
  EXPECT_TRUE(folder_.read("l") == folder_.read("lost"));
  EXPECT_EQ(status_without_reader("--expect golden in.ndjson"), "0\n");
  EXPECT_EQ(status_without_reader("--expect golden changed.ndjson"), "5\n");
  EXPECT_EQ(status_without_reader("--strict in.ndjson"), "1\n");
}

TEST_F(LongRunsTest, CutRunSaysSo) {
  const std::string text = manyLines();
  folder_.write("in.ndjson", text);
  folder_.write("cut.gz", gzipped(text).substr(0, 5000));
  const result_t closed = runShell("ostrovia-replay in.ndjson | head -1");
  EXPECT_TRUE(closed.diagnostics.starts_with(
      "ostrovia-replay: incomplete: nobody reads the output any more\nread "))
      << closed.diagnostics;
  const result_t unwritten = run({"--record", "g", "--log-level", "2", "cut.gz"});
  EXPECT_NE(unwritten.diagnostics.find(
                "incomplete: the input cannot be read further; no file is written\n"),
            std::string::npos)
      << unwritten.diagnostics;
  const result_t cut = run({"--summary=json", "cut.gz"});
  EXPECT_TRUE(
      cut.diagnostics.starts_with("ostrovia-replay: cut.gz: the gzip data ends too early\n"
                                  R"({"version":1,"complete":false,"read":)"))
      << cut.diagnostics;
  const std::string summary = run({"--quiet", "--summary", "cut.gz"}).diagnostics;
  EXPECT_NE(summary.find("ostrovia-replay: incomplete: the input cannot be read further\n"),
            std::string::npos);
}

TEST_F(LongRunsTest, TerminalShowsHowFarTheRunHasCome) {
  std::string text;
  for (int i = 0; i < 20000; ++i) text += eventLine("1");
  const std::string file = folder_.write("file", text);
  for (const bool quiet : {false, true}) {
    std::vector<std::string> arguments = {file, "--repeat", "5"}; // longer than a tenth of a second
    if (quiet) arguments.emplace_back("--quiet");
    const std::string shown = shownOnTerminal(error_descriptor_, arguments);
    if (quiet) {
      EXPECT_EQ(shown, "");
      continue;
    }
    EXPECT_NE(shown.find(" messages/s, 0:"), std::string::npos) << shown;
    EXPECT_NE(shown.find(" left"), std::string::npos);
    const std::size_t figures = shown.find("\r\x1B[Kread 100000, "); // the status line is gone
    EXPECT_NE(figures, std::string::npos) << shown;
  }
}

} // namespace com::velanto::connectivity::test
