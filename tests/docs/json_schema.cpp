#include "tests/docs/json_schema.hpp"

#include <rapidjson/document.h>
#include <rapidjson/schema.h>
#include <rapidjson/stringbuffer.h>

#include <stdexcept>

#include "tests/docs/markdown.hpp"

namespace com::velanto::connectivity::test {

namespace {

rapidjson::Document parsed(const std::string& text) {
  rapidjson::Document document;
  document.Parse(text.c_str());
  if (document.HasParseError()) throw std::runtime_error("no JSON: " + text);
  return document;
}

std::string readSchema(const char* name) {
  std::string text;
  for (const std::string& line : readDocument(name).lines) text += line + "\n";
  return text;
}

std::string textOf(const rapidjson::Pointer& pointer) {
  rapidjson::StringBuffer buffer;
  pointer.StringifyUriFragment(buffer);
  return buffer.GetString();
}

} // namespace

struct JsonSchema::Compiled {
  explicit Compiled(const char* document) : source(parsed(readSchema(document))) {}

  rapidjson::Document source;
  rapidjson::SchemaDocument schema{source};
};

JsonSchema::JsonSchema(const char* document) : compiled_(std::make_unique<Compiled>(document)) {}
JsonSchema::~JsonSchema() = default;

std::string JsonSchema::complaint(const std::string& json) const {
  const rapidjson::Document document = parsed(json);
  rapidjson::SchemaValidator validator(compiled_->schema);
  if (document.Accept(validator)) return {};
  return textOf(validator.GetInvalidDocumentPointer()) + " breaks '" +
         validator.GetInvalidSchemaKeyword() + "' of " +
         textOf(validator.GetInvalidSchemaPointer());
}

} // namespace com::velanto::connectivity::test
