// A schema of docs/ as a program uses it: it accepts JSON or says why not.
#ifndef VLT_TESTS_DOCS_JSON_SCHEMA_HPP
#define VLT_TESTS_DOCS_JSON_SCHEMA_HPP

#include <memory>
#include <string>

namespace com::velanto::connectivity::test {

class JsonSchema {
 public:
  // `document` is below the project's root. Throws when it is no JSON.
  explicit JsonSchema(const char* document);
  JsonSchema(const JsonSchema&) = delete;
  JsonSchema& operator=(const JsonSchema&) = delete;
  ~JsonSchema();

  // The empty string when `json` keeps to the schema, otherwise the place in it and the rule that it
  // breaks.
  [[nodiscard]] std::string complaint(const std::string& json) const;

 private:
  struct Compiled;
  std::unique_ptr<Compiled> compiled_;
};

} // namespace com::velanto::connectivity::test

#endif
