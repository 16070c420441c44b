#include "tools/check/report.hpp"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <utility>

#include "ndjson/json_text.hpp"
#include "ndjson/utf8.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

constexpr std::size_t NAME_WIDTH = 34;
constexpr const char* DETAIL_INDENT = "        ";

struct style_t {
  const char* mark;
  const char* colour; // an escape sequence
};

style_t styleOf(Ending ending) {
  switch (ending) {
    case Ending::OK:
      return {"ok   ", "\x1b[32m"};
    case Ending::FAILED:
      return {"FAIL ", "\x1b[31m"};
    case Ending::CRASHED:
      return {"CRASH", "\x1b[31m"};
    case Ending::HUNG:
      return {"HANG ", "\x1b[31m"};
    case Ending::SKIPPED:
      return {"skip ", "\x1b[33m"};
  }
  return {"", ""};
}

// The output of a faulty library may be any bytes.
std::string printable(std::string text) {
  const bool is_text = findInvalidUtf8(text) == std::string::npos;
  for (char& c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte < 0x20 && c != '\n') || byte == 0x7f || (byte >= 0x80 && !is_text)) c = '?';
  }
  return text;
}

// The lines of a string, each under the name of its check.
void writeIndented(std::ostream& out, const std::string& text) {
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    out << DETAIL_INDENT << rest.substr(0, end) << '\n';
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
}

// One line, unless the expected or the actual value has lines of its own.
void writeMismatch(std::ostream& out, const mismatch_t& mismatch) {
  const std::string expected = printable(mismatch.expected);
  const std::string actual = printable(mismatch.actual);
  if (expected.find('\n') == std::string::npos && actual.find('\n') == std::string::npos &&
      expected.size() + actual.size() < 100) {
    return writeIndented(out,
                         printable(mismatch.where) + ": expected " + expected + ", came " + actual);
  }
  writeIndented(out, printable(mismatch.where) + ":");
  writeIndented(out, "  expected  " + expected);
  writeIndented(out, "  came      " + actual);
}

std::string quoted(const std::string& text) {
  std::string json;
  appendJsonText(json, printable(text));
  return json;
}

std::string jsonOf(const mismatch_t& mismatch) {
  return R"({"where":)" + quoted(mismatch.where) + R"(,"expected":)" + quoted(mismatch.expected) +
         R"(,"came":)" + quoted(mismatch.actual) + "}";
}

std::string jsonOf(const result_t& result) {
  const verdict_t& verdict = result.verdict;
  std::string json = R"({"name":)" + quoted(result.check->name) + R"(,"claim":)" +
                     quoted(result.check->claim) + R"(,"outcome":")" + nameOf(verdict.ending) +
                     R"(","milliseconds":)" + std::to_string(result.time.count());
  if (!verdict.reason.empty()) json += R"(,"reason":)" + quoted(verdict.reason);
  if (!verdict.mismatches.empty()) {
    json += R"(,"differences":[)";
    for (const mismatch_t& each : verdict.mismatches) {
      if (&each != &verdict.mismatches.front()) json += ',';
      json += jsonOf(each);
    }
    json += "]";
  }
  if (!verdict.printed.empty()) json += R"(,"printed":)" + quoted(verdict.printed);
  return json + "}";
}

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

} // namespace

int Counts::total() const noexcept { return std::accumulate(counts_.begin(), counts_.end(), 0); }

void TextReport::add(const result_t& result) {
  const verdict_t& verdict = result.verdict;
  const style_t style = styleOf(verdict.ending);
  out_ << (coloured_ ? style.colour : "") << style.mark << (coloured_ ? "\x1b[0m" : "") << ' '
       << listLine(*result.check);
  if (verdict.ending == Ending::SKIPPED) out_ << ": " << printable(verdict.reason);
  out_ << '\n';
  if (verdict.ending != Ending::SKIPPED && !verdict.reason.empty()) {
    writeIndented(out_, printable(verdict.reason));
  }
  for (const mismatch_t& each : verdict.mismatches) writeMismatch(out_, each);
  if (!verdict.printed.empty()) writeIndented(out_, "printed:\n" + printable(verdict.printed));
  out_.flush();
}

void TextReport::close(const Counts& counts) {
  out_ << '\n'
       << printable(heading_.path) << ": " << counts.total() << " checks, " << counts.of(Ending::OK)
       << " ok, " << counts.of(Ending::FAILED) << " failed, " << counts.of(Ending::CRASHED)
       << " crashed, " << counts.of(Ending::HUNG) << " hung, " << counts.of(Ending::SKIPPED)
       << " skipped; seed " << heading_.seed << '\n';
  out_.flush();
}

JsonReport::JsonReport(std::ostream& out, const heading_t& heading) : out_(out) {
  out_ << "{\"library\":" << quoted(heading.path) << ",\"seed\":" << heading.seed
       << ",\"loads\":" << (heading.loads ? "true" : "false") << ",\"checks\":[";
}

void JsonReport::add(const result_t& result) {
  out_ << (std::exchange(first_, false) ? "\n" : ",\n") << jsonOf(result);
}

void JsonReport::close(const Counts& counts) {
  out_ << "\n],\"counts\":{";
  for (const Ending each :
       {Ending::OK, Ending::FAILED, Ending::CRASHED, Ending::HUNG, Ending::SKIPPED}) {
    out_ << (each == Ending::OK ? "\"" : ",\"") << nameOf(each) << "\":" << counts.of(each);
  }
  out_ << "}}\n";
  out_.flush();
}

std::string listLine(const check_t& check) {
  return padded(check.name, NAME_WIDTH) + " " + check.claim;
}

} // namespace com::velanto::connectivity::tools::check
