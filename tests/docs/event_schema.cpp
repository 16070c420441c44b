#include "tests/docs/event_schema.hpp"

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

std::string readSchema() {
  std::string text;
  for (const std::string& line : readDocument("docs/event.schema.json").lines) text += line + "\n";
  return text;
}

std::string textOf(const rapidjson::Pointer& pointer) {
  rapidjson::StringBuffer buffer;
  pointer.StringifyUriFragment(buffer);
  return buffer.GetString();
}

} // namespace

struct EventSchema::Compiled {
  rapidjson::Document source = parsed(readSchema());
  rapidjson::SchemaDocument schema{source};
};

EventSchema::EventSchema() : compiled_(std::make_unique<Compiled>()) {}
EventSchema::~EventSchema() = default;

std::string EventSchema::complaint(const std::string& line) const {
  const rapidjson::Document document = parsed(line);
  rapidjson::SchemaValidator validator(compiled_->schema);
  if (document.Accept(validator)) return {};
  return textOf(validator.GetInvalidDocumentPointer()) + " breaks '" +
         validator.GetInvalidSchemaKeyword() + "' of " +
         textOf(validator.GetInvalidSchemaPointer());
}

} // namespace com::velanto::connectivity::test
