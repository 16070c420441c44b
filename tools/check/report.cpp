#include "tools/check/report.hpp"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <utility>

#include "identity/build_name.hpp"
#include "ndjson/json_text.hpp"
#include "ndjson/visible_text.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

constexpr std::size_t LINE_WIDTH = 80; // columns
constexpr std::size_t NAME_WIDTH = 34;
constexpr std::size_t MARK_WIDTH = 6;
constexpr std::size_t DETAIL_INDENT = 8;
constexpr std::size_t VALUE_INDENT = 12; // of the expected and the actual value, below their place

struct style_t {
  const char* mark;
  const char* colour; // an escape sequence
};

style_t styleOf(const result_t& result) {
  if (result.warns()) return {"WARN ", "\x1b[33m"};
  switch (result.verdict.ending) {
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

bool startsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }

std::size_t columnsOf(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), startsCharacter));
}

// The bytes of `line` that fit into `columns`: up to its last blank there, or, in a longer word, up
// to the last whole character.
std::size_t fittingBytes(std::string_view line, std::size_t columns) {
  if (columnsOf(line) <= columns) return line.size();
  std::size_t end = 0;
  for (std::size_t seen = 0; seen < columns || !startsCharacter(line[end]); ++end) {
    if (startsCharacter(line[end])) ++seen;
  }
  const std::size_t blank = line.rfind(' ', end);
  return blank == std::string_view::npos || blank == 0 ? end : blank;
}

// Ends a line that has `used` columns already with the lines of `text`. Each goes on at `indent`
// where it exceeds the width.
void writeWrapped(std::ostream& out, std::size_t used, std::size_t indent, std::string_view text) {
  do {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    do {
      const std::size_t fitting = fittingBytes(line, LINE_WIDTH - used);
      out << line.substr(0, fitting) << '\n';
      line.remove_prefix(fitting);
      if (line.starts_with(' ')) line.remove_prefix(1);
      used = indent;
      if (!line.empty() || !text.empty()) out << std::string(indent, ' ');
    } while (!line.empty());
  } while (!text.empty());
}

void writeDetail(std::ostream& out, const std::string& text) {
  out << std::string(DETAIL_INDENT, ' ');
  writeWrapped(out, DETAIL_INDENT, DETAIL_INDENT, text);
}

void writeValue(std::ostream& out, const char* label, const std::string& value) {
  out << std::string(DETAIL_INDENT, ' ') << label;
  writeWrapped(out, DETAIL_INDENT + VALUE_INDENT, DETAIL_INDENT + VALUE_INDENT, value);
}

// One line, unless that is too long or a value has lines of its own.
void writeMismatch(std::ostream& out, const mismatch_t& mismatch) {
  const std::string where = visibleLines(mismatch.where);
  const std::string expected = visibleLines(mismatch.expected);
  const std::string actual = visibleLines(mismatch.actual);
  const std::string line = where + ": expected " + expected + ", came " + actual;
  if (line.find('\n') == std::string::npos && columnsOf(line) <= LINE_WIDTH - DETAIL_INDENT) {
    return writeDetail(out, line);
  }
  writeDetail(out, where + ":");
  writeValue(out, "  expected  ", expected);
  writeValue(out, "  came      ", actual);
}

// Name and claim, in a line that has `used` columns already.
void writeClaim(std::ostream& out, std::size_t used, const check_t& check, const char* rest) {
  std::string name = check.name;
  name.resize(std::max(name.size(), NAME_WIDTH), ' ');
  out << name << ' ';
  const std::size_t column = used + name.size() + 1;
  writeWrapped(out, column, column, std::string(check.claim) + rest);
}

std::string clauseOf(const check_t& check) {
  if (check.clause == ADVISED_ONLY) return "advised, not required by docs/host-interface.md";
  return std::string("docs/host-interface.md, \"") + check.clause + "\"";
}

std::string quoted(const std::string& text) {
  std::string json;
  appendJsonText(json, text);
  return visible(json);
}

std::string jsonOf(const mismatch_t& mismatch) {
  return R"({"where":)" + quoted(mismatch.where) + R"(,"expected":)" + quoted(mismatch.expected) +
         R"(,"came":)" + quoted(mismatch.actual) + "}";
}

std::string levelOf(const check_t& check) {
  if (check.clause == ADVISED_ONLY) return R"(,"level":"advised")";
  return R"(,"level":"required","clause":)" + quoted(check.clause);
}

std::string jsonOf(const result_t& result) {
  const verdict_t& verdict = result.verdict;
  std::string json = R"({"name":)" + quoted(result.check->name) + R"(,"claim":)" +
                     quoted(result.check->claim) + levelOf(*result.check) + R"(,"outcome":")" +
                     nameOf(verdict.ending) + R"(","milliseconds":)" +
                     std::to_string(result.time.count());
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

} // namespace

bool result_t::warns() const noexcept {
  const bool passed = verdict.ending == Ending::OK || verdict.ending == Ending::SKIPPED;
  return !passed && !strict && check->clause == ADVISED_ONLY;
}

void Counts::add(const result_t& result) noexcept {
  ++(result.warns() ? warned_ : counts_[static_cast<std::size_t>(result.verdict.ending)]);
}

int Counts::total() const noexcept {
  return std::accumulate(counts_.begin(), counts_.end(), warned_);
}

void TextReport::add(const result_t& result) {
  const verdict_t& verdict = result.verdict;
  const style_t style = styleOf(result);
  const bool skipped = verdict.ending == Ending::SKIPPED;
  out_ << (coloured_ ? style.colour : "") << style.mark << (coloured_ ? "\x1b[0m" : "") << ' ';
  writeClaim(out_, MARK_WIDTH, *result.check, "");
  if (verdict.ending != Ending::OK && !skipped) writeDetail(out_, clauseOf(*result.check));
  if (!verdict.reason.empty()) writeDetail(out_, visibleLines(verdict.reason));
  for (const mismatch_t& each : verdict.mismatches) writeMismatch(out_, each);
  if (!verdict.printed.empty()) writeDetail(out_, "printed:\n" + visibleLines(verdict.printed));
  out_.flush();
}

void TextReport::close(const Counts& counts) {
  out_ << '\n';
  const file_identity_t& library = heading_.file;
  out_ << visible(library.path) << "\n  seed " << heading_.seed << '\n'; // whole, to be copied
  const auto or_else = [](const std::string& text, const char* other) {
    return text.empty() ? other : text;
  };
  writeWrapped(out_, 0, 4,
               "  size " + std::to_string(library.size) + " bytes, build id " +
                   or_else(library.build_id, "unknown"));
  out_ << "  SHA-256 " << library.sha256 << "\n  build " << or_else(library.build_name, "unknown")
       << "\n  checked by " << VLT_BUILD_NAME << '\n';
  out_ << counts.total() << (counts.total() == 1 ? " check: " : " checks: ")
       << counts.of(Ending::OK) << " ok, " << counts.warned() << " warned, "
       << counts.of(Ending::FAILED) << " failed, " << counts.of(Ending::CRASHED) << " crashed, "
       << counts.of(Ending::HUNG) << " hung, " << counts.of(Ending::SKIPPED) << " skipped\n";
  out_.flush();
}

JsonReport::JsonReport(std::ostream& out, const heading_t& heading) : out_(out) {
  const file_identity_t& library = heading.file;
  const auto or_null = [](const std::string& text) { return text.empty() ? "null" : quoted(text); };
  out_ << R"({"version":1,"tool":)" << quoted(VLT_BUILD_NAME) << R"(,"library":)"
       << quoted(library.path) << ",\"size\":" << library.size << R"(,"sha256":)"
       << quoted(library.sha256) << R"(,"build_id":)" << or_null(library.build_id) << R"(,"build":)"
       << or_null(library.build_name) << ",\"seed\":" << heading.seed
       << ",\"loads\":" << (heading.loads ? "true" : "false")
       << ",\"strict\":" << (heading.strict ? "true" : "false") << ",\"checks\":[";
}

void JsonReport::add(const result_t& result) {
  out_ << (std::exchange(first_, false) ? "\n" : ",\n") << jsonOf(result);
}

void JsonReport::close(const Counts& counts) {
  out_ << "\n],\"counts\":{\"warned\":" << counts.warned();
  for (const Ending each :
       {Ending::OK, Ending::FAILED, Ending::CRASHED, Ending::HUNG, Ending::SKIPPED}) {
    out_ << ",\"" << nameOf(each) << "\":" << counts.of(each);
  }
  out_ << "}}\n";
  out_.flush();
}

void writeList(std::ostream& out, std::span<const check_t> checks) {
  for (const check_t& check : checks) {
    writeClaim(out, 0, check, check.clause == ADVISED_ONLY ? " (advised)" : "");
  }
}

} // namespace com::velanto::connectivity::tools::check
