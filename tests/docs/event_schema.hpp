// docs/event.schema.json as a program uses it: it accepts a line of JSON or says why not.
#ifndef VLT_TESTS_DOCS_EVENT_SCHEMA_HPP
#define VLT_TESTS_DOCS_EVENT_SCHEMA_HPP

#include <memory>
#include <string>

namespace com::velanto::connectivity::test {

class EventSchema {
 public:
  // Throws when the document is no JSON.
  EventSchema();
  EventSchema(const EventSchema&) = delete;
  EventSchema& operator=(const EventSchema&) = delete;
  ~EventSchema();

  // The empty string when `line` is an event, otherwise the place in the line and the rule that it
  // breaks.
  [[nodiscard]] std::string complaint(const std::string& line) const;

 private:
  struct Compiled;
  std::unique_ptr<Compiled> compiled_;
};

} // namespace com::velanto::connectivity::test

#endif
