// The parts of the project's documents that tests read: fenced blocks, numbered log lines and
// tables. A document with another layout is a std::runtime_error "NAME:LINE: REASON", so a misspelt
// fence is an error and not an example that nobody runs.
#ifndef VLT_TESTS_DOCS_MARKDOWN_HPP
#define VLT_TESTS_DOCS_MARKDOWN_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace com::velanto::connectivity::test {

struct document_t {
  std::string name; // as in error texts
  std::vector<std::string> lines;
};

// The file `name`, relative to the project's root. Throws when it is not there.
[[nodiscard]] document_t readDocument(const std::string& name);

// The files *.ndjson of a folder of the project, named as readDocument wants them, in no order.
[[nodiscard]] std::vector<std::string> ndjsonIn(const std::string& folder);

// All documents of the project, relative to its root.
[[nodiscard]] std::vector<std::string> documentNames();

// `text` as a document, for tests of the functions below.
[[nodiscard]] document_t documentOf(const std::string& text);

// "NAME:LINE", lines counted from 1.
[[nodiscard]] std::string placeOf(const document_t& document, std::size_t line);

struct block_t {
  std::size_t line; // of the opening fence
  std::string info;
  std::string text; // with line ends
};

// All fenced blocks. Throws when one is not closed.
[[nodiscard]] std::vector<block_t> readBlocks(const document_t& document);

// One example: a message, and its event or its log line.
struct documented_example_t {
  std::string place;
  std::string input;
  std::string output; // empty: the codec drops the message
  std::string log;    // without a line end; empty: no line
};

struct examples_t {
  std::string configuration;
  std::vector<documented_example_t> examples;
};

// The blocks "json configuration" (one, before all others), "json input", "json output" and "log".
// Throws for an input without an output or a log line, for an output or a log line without an
// input, and for a block of any other kind.
[[nodiscard]] examples_t readExamples(const document_t& document);

// The code spans of a numbered list. Each item is a sentence and, on the next line, a code span.
// Throws when the numbers are not 1, 2, 3 … or an item has no code span.
[[nodiscard]] std::vector<std::string> readNumberedSpans(const document_t& document);

// The rows of the table whose head begins with `first_column`. Cells have no blanks around them,
// and a cell that is one code span has no marks. Throws when there is no such table or a row lacks
// cells.
[[nodiscard]] std::vector<std::vector<std::string>> readTable(const document_t& document,
                                                              const std::string& first_column);

// Whether `text` is `pattern`, in which each … is any text.
[[nodiscard]] bool matches(std::string_view pattern, std::string_view text);

} // namespace com::velanto::connectivity::test

#endif
