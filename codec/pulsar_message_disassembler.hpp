// Owns one notification while a conversion takes it apart. Tells the resource kind from its path,
// and hands out the payload map for the conversions to remove their fields from.
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
  explicit PulsarMessageDisassembler(Message&& notification) noexcept
      : notification_(std::move(notification)) {}
  PulsarMessageDisassembler(const PulsarMessageDisassembler&) = delete;
  PulsarMessageDisassembler& operator=(const PulsarMessageDisassembler&) = delete;
  ~PulsarMessageDisassembler() = default;

  // The first character of the type segment, inside the stored path: valid as long as the metadata.
  // The terminating NUL when the path has fewer than two '/'. Throws std::runtime_error "No Pulsar
  // path found", or the typed get's error for a path that is not a string.
  [[nodiscard]] const char* getStartCharOfMessageType() const;

  // Frees the metadata's entries; the event may get the table. There is no path after this.
  void discardMetadata() noexcept {
    notification_.getMetadataMap().clear();
    spares_.keepMap(std::move(notification_.getMetadataMap()));
  }

  // The payload in place. Throws the typed get's error when it is not a map.
  [[nodiscard]] map_t& getPayloadMap();

  // Moves the payload map out and leaves an empty map. Throws as getPayloadMap does.
  [[nodiscard]] map_t extractRemainingPayload();

  // Holds the extracted "id", so that reduceToId can still use it until the builder takes it.
  [[nodiscard]] data_t& holdId(data_t&& id) noexcept { return id_ = std::move(id); }

  // The payload of a dropped notification, which must be a map: a map with its "id" alone, which
  // reads `text`, or an empty value for null. Made of the notification's own id, key and table as
  // far as they are still here, otherwise of the host's memory; an empty value without memory.
  [[nodiscard]] data_t reduceToId(const char* text) noexcept;

  // The fault of the notification.
  [[nodiscard]] Fault& getFault() noexcept { return fault_; }

  // Parts that the notification has lost and the event can use.
  [[nodiscard]] SpareParts& getSpareParts() noexcept { return spares_; }

 private:
  Message notification_;
  data_t id_;
  SpareParts spares_;
  Fault fault_;
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
