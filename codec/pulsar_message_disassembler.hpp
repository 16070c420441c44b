// Owns one notification while it is taken apart: tells the resource kind from the path under which
// it was delivered, and hands out the payload map from which the conversions remove what they use.
//
//   pulsarPath   tenantA / sub1 / alarms / 4711
//                                 ^ the type segment: from the second '/' to the next, or the end
#ifndef VLT_CODEC_PULSAR_MESSAGE_DISASSEMBLER_HPP
#define VLT_CODEC_PULSAR_MESSAGE_DISASSEMBLER_HPP

#include "codec/fault.hpp"
#include "codec/spare_parts.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

class PulsarMessageDisassembler {
 public:
  PulsarMessageDisassembler() noexcept = default;
  // `id` is the payload's entry under "id" if that has been looked up already and is there, otherwise
  // null.
  explicit PulsarMessageDisassembler(Message&& notification,
                                     const map_entry_t* id = nullptr) noexcept
      : notification_(std::move(notification)), id_(id) {}

  // The first character of the type segment, inside the stored path: valid while this object lives.
  // The terminating NUL when the path has fewer than two '/'. Throws std::runtime_error "No Pulsar
  // path found", or the typed get's error for a path that is no string.
  [[nodiscard]] const char* getStartCharOfMessageType() const;
  // The same in a path that has been looked up already.
  [[nodiscard]] static const char* getStartCharOfMessageType(const data_t& path);

  // The payload in place. Throws the typed get's error when it is no map.
  [[nodiscard]] map_t& getPayloadMap();

  // The payload's entry under `key`, or null. Throws std::bad_alloc, and as getPayloadMap does.
  [[nodiscard]] const map_entry_t* findField(const constant_t& key);

  // Moves the payload map out and leaves an empty map. Throws as getPayloadMap does.
  [[nodiscard]] map_t extractRemainingPayload();

  // What was found to be wrong with the notification so far.
  [[nodiscard]] Fault& getFault() noexcept { return fault_; }

  // Frees the metadata, once the resource kind is known. There is no path after this.
  void discardMetadata() noexcept { spares_.keep(std::move(notification_.getMetadataMap())); }

  // What the notification has lost and the event can use.
  [[nodiscard]] SpareParts&& getSpareParts() noexcept { return spares_.lend(); }

 private:
  Message notification_;
  const map_entry_t* id_ = nullptr; // until the payload is changed under that key
  SpareParts spares_;
  Fault fault_;
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
