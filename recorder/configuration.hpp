// The settings of a recorder, read from the configuration that the host hands to create. Each has
// one kind; any other value refuses the creation with one line that names the setting.
//
//   setting            kind                       default
//   recordingFolder    string                     none: it must be there
//   recordingName      string                     PLUG-IN-CHAIN
//   maxFileMebibytes   integer, 1 to 1048576      64
//   maxFiles           integer, 1 to 100000       16
//   whenFull           "ring" or "stop"           "ring"
//   stopAfterMessages  integer from 1             never
//   stopAfterSeconds   integer from 1             never
//   directions         list, "host" "transport"   both
//   kinds              list, names of KINDS       all messages, those of no kind included
//   pathPrefix         string                     all messages, those without a path included
//   oneIn              integer from 1             1: every batch
//   omit               list of paths              nothing
//   whileFileExists    string                     always
//
// No string and no list may be empty. Settings of other names are not the recorder's.
#ifndef VLT_RECORDER_CONFIGURATION_HPP
#define VLT_RECORDER_CONFIGURATION_HPP

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "ndjson/field_set.hpp"
#include "value/map_t.hpp"

namespace com::velanto::connectivity::recorder {

enum class Direction : unsigned { HOST, TRANSPORT };
inline constexpr std::array<std::string_view, 2> DIRECTIONS = {"host", "transport"};

// A kind of notification, by the word in its path, and the type of the event made from it.
struct kind_t {
  std::string_view word;
  std::string_view type;
};
inline constexpr std::array<kind_t, 5> KINDS = {{
    {"alarms", "com.tivra.ostrovia.Alarm"},
    {"events", "com.tivra.ostrovia.Event"},
    {"measurements", "com.tivra.ostrovia.Measurement"},
    {"managedobjects", "com.tivra.ostrovia.ManagedObject"},
    {"operations", "com.tivra.ostrovia.Operation"},
}};

struct configuration_t {
  std::string folder;
  std::string name; // letters, digits, '-', '_' and '.'; at most 200 bytes
  std::uint64_t max_file_bytes = 0;
  std::uint64_t max_files = 0;
  bool is_ring = true;
  std::uint64_t stop_after_messages = 0; // 0: never
  std::uint64_t stop_after_seconds = 0;  // 0: never
  unsigned directions = 0;               // bits, by Direction
  unsigned kinds = 0;                    // bits, by place in KINDS; 0: no matter which
  std::string path_prefix;
  std::uint64_t one_in = 1;
  FieldSet omitted;
  std::string while_file_exists; // empty: records always
  std::string json;              // all settings, defaults included, as members of an object
  std::string omit_json = "[]";  // the list of paths
};

// Throws std::runtime_error with the line for the log, std::bad_alloc.
[[nodiscard]] configuration_t readConfiguration(const map_t& settings,
                                                const std::string& plugin_name,
                                                const std::string& chain_id);

} // namespace com::velanto::connectivity::recorder

#endif
