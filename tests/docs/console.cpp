#include "tests/docs/console.hpp"

#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "tests/support/pattern.hpp"

namespace com::velanto::connectivity::test {

namespace {

constexpr std::string_view ELLIPSIS = "…";
constexpr std::string_view PROMPT = "$ ";
constexpr std::string_view INDENT = "    ";

void append(std::vector<session_t>& sessions, const std::string& place, const std::string& line) {
  if (line.starts_with(PROMPT)) {
    sessions.push_back({place, line.substr(PROMPT.size()), {}});
  } else if (sessions.empty() || sessions.back().place != place) {
    throw std::runtime_error(place + ": the block does not begin with a command");
  } else {
    sessions.back().shown += line + "\n";
  }
}

void appendFenced(std::vector<session_t>& sessions, const document_t& document) {
  for (const block_t& block : readBlocks(document)) {
    if (block.info != "console") continue;
    std::istringstream lines(block.text);
    for (std::string line; std::getline(lines, line);) {
      append(sessions, placeOf(document, block.line), line);
    }
  }
}

// Indented blocks that begin otherwise are drawings, or the forms of a command.
void appendIndented(std::vector<session_t>& sessions, const document_t& document) {
  std::string place;
  bool is_inside = false;
  for (std::size_t i = 0; i < document.lines.size(); ++i) {
    const std::string& line = document.lines[i];
    const bool was_inside = std::exchange(is_inside, line.starts_with(INDENT));
    if (!is_inside) continue;
    const std::string text = line.substr(INDENT.size());
    if (!was_inside) place = text.starts_with(PROMPT) ? placeOf(document, i + 1) : "";
    if (!place.empty()) append(sessions, place, text);
  }
}

bool standsForLines(const std::string& line) {
  return line.size() > ELLIPSIS.size() && line.starts_with(ELLIPSIS) && line.ends_with(ELLIPSIS);
}

unsigned long numbersIn(const std::string& line) {
  static const Pattern NUMBER("[0-9]+");
  unsigned long sum = 0;
  for (const Pattern::match_t& found : NUMBER.allIn(line)) sum += std::stoul(found[0]);
  return sum;
}

// Takes the lines that `line` describes from `shown`; empties it when they are missing.
void skip(std::istream& shown, const std::string& line) {
  std::string skipped;
  for (unsigned long i = numbersIn(line); i > 0; --i) std::getline(shown, skipped);
}

} // namespace

std::vector<session_t> sessionsOf(const document_t& document) {
  std::vector<session_t> sessions;
  appendFenced(sessions, document);
  appendIndented(sessions, document);
  return sessions;
}

std::string withoutTimes(const std::string& text) {
  static const Pattern TIME(R"( *\b[0-9]+(\.[0-9]+)? ?(ms|µs|messages/s))");
  return TIME.replacedIn(text, " T $2");
}

std::string abbreviated(const std::string& shown, const std::string& expected) {
  std::istringstream shown_lines(shown);
  std::istringstream expected_lines(expected);
  std::string result;
  std::string pattern;
  while (std::getline(expected_lines, pattern)) {
    if (standsForLines(pattern)) {
      skip(shown_lines, pattern);
      if (shown_lines) result += pattern + "\n";
      continue;
    }
    std::string line;
    if (!std::getline(shown_lines, line)) return result;
    if (pattern.ends_with(ELLIPSIS) &&
        line.starts_with(pattern.substr(0, pattern.size() - ELLIPSIS.size()))) {
      line = pattern;
    }
    result += line + "\n";
  }
  for (std::string line; std::getline(shown_lines, line);) result += line + "\n";
  return result;
}

void Console::copySamples(const std::string& folder) {
  std::filesystem::create_directories(folder_.path(folder));
  for (const auto& file : std::filesystem::directory_iterator(VLT_PROJECT_ROOT "/samples")) {
    std::filesystem::copy(file.path(),
                          std::filesystem::path(folder_.path(folder)) / file.path().filename());
  }
}

void Console::expectAsShown(const session_t& session) {
  const std::string shown = withoutTimes(runShell("{ " + session.command + "\n} 2>&1").out);
  const std::string expected = withoutTimes(session.shown);
  EXPECT_EQ(abbreviated(shown, expected), expected) << session.place << ": " << session.command;
}

void Console::expectAsShown(const char* document) {
  const std::vector<session_t> sessions = sessionsOf(readDocument(document));
  EXPECT_FALSE(sessions.empty());
  for (const session_t& session : sessions) expectAsShown(session);
}

} // namespace com::velanto::connectivity::test
