// The unit that travels along a chain: a payload and the metadata entries. Messages are in arrays
// of the host, 24 bytes apart, and the codec transforms them there.
#ifndef VLT_VALUE_MESSAGE_HPP
#define VLT_VALUE_MESSAGE_HPP

#include <utility>

#include "value/data_t.hpp"

namespace com::velanto::connectivity {

class Message {
 public:
  Message() noexcept = default;
  explicit Message(data_t&& payload, map_t&& metadata = map_t()) noexcept
      : payload_(std::move(payload)), metadata_(std::move(metadata)) {}
  // A moved-from message has an empty payload and no metadata, and stays usable.
  Message(Message&&) noexcept = default;
  Message& operator=(Message&&) noexcept = default;
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;
  ~Message() = default;

  [[nodiscard]] data_t& getPayload() noexcept { return payload_; }
  [[nodiscard]] const data_t& getPayload() const noexcept { return payload_; }
  [[nodiscard]] map_t& getMetadataMap() noexcept { return metadata_; }
  [[nodiscard]] const map_t& getMetadataMap() const noexcept { return metadata_; }

 private:
  data_t payload_;
  map_t metadata_;
};

static_assert(sizeof(Message) == sizeof(vlt_underlying_message_t),
              "batches are arrays of the host");
static_assert(alignof(Message) == alignof(vlt_underlying_message_t), "for the same reason");

} // namespace com::velanto::connectivity

#endif
