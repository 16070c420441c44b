#include "tests/docs/markdown.hpp"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace com::velanto::connectivity::test {

namespace {

constexpr std::string_view FENCE = "```";
constexpr const char* UNANSWERED = "the input is not followed by an output or a log line";

[[noreturn]] void refuse(const document_t& document, std::size_t line, const std::string& reason) {
  throw std::runtime_error(placeOf(document, line) + ": " + reason);
}

bool beginsWith(std::string_view text, std::string_view begin) {
  return text.substr(0, begin.size()) == begin;
}

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

// One span and nothing else.
bool isSpan(std::string_view text) {
  return text.size() > 2 && text.front() == '`' && text.find('`', 1) == text.size() - 1;
}

// The content of the code span if `text` is one, otherwise `text`.
std::string_view unspanned(std::string_view text) {
  return isSpan(text) ? text.substr(1, text.size() - 2) : text;
}

std::vector<std::string> linesOf(std::istream& stream) {
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// The cells of the row |a|b|.
std::vector<std::string> cellsOf(std::string_view row) {
  std::vector<std::string> cells;
  row.remove_prefix(1);
  for (std::size_t bar = row.find('|'); bar != std::string_view::npos; bar = row.find('|')) {
    cells.emplace_back(unspanned(trimmed(row.substr(0, bar))));
    row.remove_prefix(bar + 1);
  }
  return cells;
}

// The log line in `block`: it has exactly one.
std::string singleLine(const document_t& document, const block_t& block) {
  const std::size_t end = block.text.find('\n');
  if (end == std::string::npos || end + 1 != block.text.size()) {
    refuse(document, block.line, "a log block has one line");
  }
  return block.text.substr(0, end);
}

} // namespace

document_t readDocument(const std::string& name) {
  std::ifstream file(std::string(VLT_PROJECT_ROOT "/") + name);
  if (!file) throw std::runtime_error(name + ": cannot be read");
  return {name, linesOf(file)};
}

std::vector<std::string> ndjsonIn(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& file :
       std::filesystem::directory_iterator(VLT_PROJECT_ROOT + std::string("/") + folder)) {
    if (file.path().extension() == ".ndjson") {
      files.push_back(folder + "/" + file.path().filename().string());
    }
  }
  return files;
}

std::vector<std::string> documentNames() {
  std::vector<std::string> names;
  for (const char* const folder : {"", "docs/", "samples/", "tools/check/conformance/"}) {
    for (const auto& file :
         std::filesystem::directory_iterator(VLT_PROJECT_ROOT + std::string("/") + folder)) {
      if (file.path().extension() != ".md") continue;
      names.push_back(folder + file.path().filename().string());
    }
  }
  return names;
}

document_t documentOf(const std::string& text) {
  std::istringstream stream(text);
  return {"text", linesOf(stream)};
}

std::string placeOf(const document_t& document, std::size_t line) {
  return document.name + ":" + std::to_string(line);
}

std::vector<block_t> readBlocks(const document_t& document) {
  std::vector<block_t> blocks;
  bool open = false;
  for (std::size_t i = 0; i < document.lines.size(); ++i) {
    const std::string& line = document.lines[i];
    if (beginsWith(line, FENCE)) {
      if (!open) blocks.push_back({i + 1, line.substr(FENCE.size()), {}});
      open = !open;
    } else if (open) {
      blocks.back().text += line + "\n";
    }
  }
  if (open) refuse(document, blocks.back().line, "the block is not closed");
  return blocks;
}

examples_t readExamples(const document_t& document) {
  examples_t result;
  std::size_t input_at = 0; // the line of the input that has no partner yet, or 0
  for (const block_t& block : readBlocks(document)) {
    const bool is_answer = block.info == "json output" || block.info == "log";
    if (is_answer && input_at == 0) {
      refuse(document, block.line, "there is no input before this block");
    }
    if (!is_answer && input_at != 0) refuse(document, input_at, UNANSWERED);

    if (block.info == "json configuration" && result.configuration.empty()) {
      result.configuration = block.text;
    } else if (block.info == "json input" && !result.configuration.empty()) {
      result.examples.push_back({placeOf(document, block.line), block.text, {}, {}});
      input_at = block.line;
    } else if (is_answer) {
      if (block.info == "log") {
        result.examples.back().log = singleLine(document, block);
      } else {
        result.examples.back().output = block.text;
      }
      input_at = 0;
    } else {
      refuse(document, block.line, "no block '" + block.info + "' belongs here");
    }
  }
  if (input_at != 0) refuse(document, input_at, UNANSWERED);
  return result;
}

std::vector<std::string> readNumberedSpans(const document_t& document) {
  std::vector<std::string> spans;
  for (std::size_t i = 0; i < document.lines.size(); ++i) {
    const std::string& line = document.lines[i];
    const std::size_t digits = line.find_first_not_of("0123456789");
    if (digits == 0 || digits == std::string::npos || line[digits] != '.') continue;
    if (line.substr(0, digits) != std::to_string(spans.size() + 1)) {
      refuse(document, i + 1, "number " + std::to_string(spans.size() + 1) + " is expected here");
    }
    const std::string_view next =
        i + 1 < document.lines.size() ? trimmed(document.lines[i + 1]) : std::string_view();
    if (!isSpan(next)) refuse(document, i + 1, "the item has no code span on its next line");
    spans.emplace_back(unspanned(next));
  }
  return spans;
}

std::vector<std::vector<std::string>> readTable(const document_t& document,
                                                const std::string& first_column) {
  std::size_t i = 0;
  while (i < document.lines.size() && !beginsWith(document.lines[i], "| " + first_column + " |")) {
    ++i;
  }
  if (i == document.lines.size()) refuse(document, i, "there is no table '" + first_column + "'");
  const std::size_t columns = cellsOf(document.lines[i]).size();
  std::vector<std::vector<std::string>> rows;
  for (i += 2; i < document.lines.size() && beginsWith(document.lines[i], "|"); ++i) {
    rows.push_back(cellsOf(document.lines[i]));
    if (rows.back().size() != columns)
      refuse(document, i + 1, "the row is not as long as the head");
  }
  return rows;
}

bool matches(std::string_view pattern, std::string_view text) {
  constexpr std::string_view ANYTHING = "…";
  std::size_t gap = pattern.find(ANYTHING);
  if (gap == std::string_view::npos) return pattern == text;
  if (text.substr(0, gap) != pattern.substr(0, gap)) return false;
  text.remove_prefix(gap);
  pattern.remove_prefix(gap + ANYTHING.size());
  for (; (gap = pattern.find(ANYTHING)) != std::string_view::npos;
       pattern.remove_prefix(gap + ANYTHING.size())) {
    const std::size_t at = text.find(pattern.substr(0, gap));
    if (at == std::string_view::npos) return false;
    text.remove_prefix(at + gap);
  }
  return text.ends_with(pattern);
}

} // namespace com::velanto::connectivity::test
