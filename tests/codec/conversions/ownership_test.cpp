// An event moves values and keys out of its notification: each is the same block as before. The lines
// of tools/check/conformance/ state the results.
#include <algorithm>
#include <string_view>
#include <vector>

#include "tests/codec/examples.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

// The block of the value at a path like "source/id". "source/id@" means the key of that entry.
std::uint64_t blockAt(map_t& map, std::string_view path) {
  const std::size_t slash = path.find('/');
  if (slash != std::string_view::npos) {
    const std::string outer(path.substr(0, slash));
    return blockAt(at(map, outer.c_str()).get<map_t>(), path.substr(slash + 1));
  }
  const bool key = path.back() == '@';
  const std::string name(path.substr(0, path.size() - (key ? 1 : 0)));
  return key ? keyBlockOf(map, text(name.c_str())) : blockOf(at(map, name.c_str()));
}

// The place of a block in the payload of an example, and its place in the event.
struct moved_t {
  std::string_view kind;
  const char* from;
  const char* to;
};
constexpr moved_t MOVED[] = {
    {"alarms", "id", "id"},
    {"alarms", "source/id", "source"},
    {"alarms", "text", "text"},
    {"alarms", "type", "type"},
    {"alarms", "o6a_Custom", "o6a_Custom"},
    {"alarms", "o6a_Custom@", "o6a_Custom@"},
    {"alarms", "o6a_Custom/deep", "o6a_Custom/deep"},
    {"events", "id", "id"},
    {"events", "source/id", "source"},
    {"events", "text", "text"},
    {"events", "type", "type"},
    {"events", "o6a_Extra@", "o6a_Extra@"},
    {"measurements", "id", "id"},
    {"measurements", "source/id", "source"},
    {"measurements", "type", "type"},
    {"measurements", "o6a_Temperature/T", "measurements/T/params"}, // the series' own table
    {"measurements", "o6a_Temperature/T@", "measurements/T@"},
    {"measurements", "o6a_Temperature/T/units", "measurements/T/units"},
    {"measurements", "o6a_Note", "o6a_Note"},
    {"measurements", "o6a_Note@", "o6a_Note@"},
    {"managedobjects", "id", "id"},
    {"managedobjects", "name", "source"},
    {"managedobjects", "o6a_SupportedOperations", "supportedOperations"},
    {"managedobjects", "o6a_SupportedMeasurements", "supportedMeasurements"},
    {"managedobjects", "o6a_Position/alt", "position/alt"},
    {"managedobjects", "o6a_Position/alt@", "position/alt@"},
    {"managedobjects", "o6a_Position/origin", "origin"},
    {"managedobjects", "o6a_Position/origin@", "origin@"},
    {"managedobjects", "childDevices", "childDeviceIds"},
    {"managedobjects", "lastUpdated", "lastUpdated"}, // not a time, so still a string
    {"operations", "id", "id"},
    {"operations", "source/id", "source"},
    {"operations", "o6a_Restart@", "o6a_Restart@"},
};

using Ownership = HostFixture;

TEST_F(Ownership, BlocksMoveIntoTheEvent) {
  for (const moved_t& row : MOVED) {
    const auto* const example =
        std::find_if(std::begin(EXAMPLES), std::end(EXAMPLES),
                     [&row](const example_t& other) { return other.kind == row.kind; });
    map_t payload = example->payload();
    const std::uint64_t block = blockAt(payload, row.from);
    ASSERT_NE(block, 0U) << row.kind << ": " << row.from;
    map_t fields = fieldsOf(example->convert, std::move(payload));
    EXPECT_EQ(blockAt(fields, row.to), block) << row.kind << ": " << row.to;
  }
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
