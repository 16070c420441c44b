// A link that notes its batches and its destruction, for the tests of the codec bases.
#ifndef VLT_TESTS_PLUGIN_LINKS_HPP
#define VLT_TESTS_PLUGIN_LINKS_HPP

#include <string>
#include <vector>

#include "plugin/sides.hpp"
#include "value/to_string.hpp"

namespace com::velanto::connectivity::test {

// The notes of one or more links, in the order of the events.
struct journal_t {
  std::vector<std::string> entries;
  Message* start = nullptr; // of the latest batch
  Message* end = nullptr;
};

class RecordingLink final : public HostSide, public TransportSide {
 public:
  RecordingLink(journal_t& journal, std::string name) : journal_(journal), name_(std::move(name)) {}
  ~RecordingLink() override { journal_.entries.push_back(std::string("~").append(name_)); }

  void sendBatchTowardsHost(Message* start, Message* end) override { take("host", start, end); }
  void sendBatchTowardsTransport(Message* start, Message* end) override {
    take("transport", start, end);
  }

 private:
  // Writes "NAME towards DIRECTION: PAYLOAD PAYLOAD …".
  void take(const char* direction, Message* start, Message* end) {
    std::string entry = name_ + " towards " + direction + ":";
    for (const Message* m = start; m != end; ++m)
      entry.append(" ").append(to_string(m->getPayload()));
    journal_.entries.push_back(entry);
    journal_.start = start;
    journal_.end = end;
  }

  journal_t& journal_;
  std::string name_;
};

} // namespace com::velanto::connectivity::test

#endif
