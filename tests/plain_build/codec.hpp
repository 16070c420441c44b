// The codec: its log, its settings, and the way of a batch.
#ifndef VLT_PLAIN_BUILD_CODEC_HPP
#define VLT_PLAIN_BUILD_CODEC_HPP

#include <string>

#include "host/types.h"
#include "tests/plain_build/value.hpp"

namespace plain_build {

using Message = vlt_underlying_message_t;

// The lines of one category. Knows the level of its category from its construction on.
class Log {
 public:
  explicit Log(const std::string& category);
  bool shows(vlt_log_level_t level) const noexcept { return level <= level_; }
  // Never throws; a host may lose a line.
  void write(vlt_log_level_t level, const std::string& text) const noexcept;

 private:
  std::string category_;
  vlt_log_level_t level_;
};

struct Settings {
  std::string measurement_channel;
  std::string devices_channel;
  std::string tenant; // empty: none
};

// Reads the configuration, which stays as it is. Throws std::runtime_error with the text for the
// log, and std::bad_alloc.
Settings settingsOf(const RawValue& configuration);

// The next link in one direction: none until the host sets one.
struct Link {
  void* handle = nullptr;
  vlt_batch_function function = nullptr;

  // Throws what the link throws.
  void send(Message* start, Message* end) const {
    if (function != nullptr) function(handle, start, end);
  }
};

class Codec {
 public:
  Codec(Log log, Settings settings);

  const Log& log() const noexcept { return log_; }
  // Throw std::runtime_error for a link without a function.
  void setNextTowardsHost(const Link& link);
  void setNextTowardsTransport(const Link& link);

  // Converts the messages in place and moves the kept ones to the front. Throw what the link throws.
  void sendBatchTowardsHost(Message* start, Message* end) const;
  void sendBatchTowardsTransport(Message* start, Message* end) const;

 private:
  bool converted(Message& message) const noexcept;
  void convertMessage(Message& message) const;
  void trace(const Message& message) const;

  Log log_;
  Settings settings_;
  Link host_link_;
  Link transport_link_;
};

} // namespace plain_build

#endif
