// The two directions of a batch. These interfaces link a chain element to its neighbours; a codec
// is itself one, so that it can be its neighbour's next link.
#ifndef VLT_PLUGIN_SIDES_HPP
#define VLT_PLUGIN_SIDES_HPP

#include "value/message.hpp"

namespace com::velanto::connectivity {

class HostSide {
 public:
  HostSide() = default;
  HostSide(const HostSide&) = delete;
  HostSide& operator=(const HostSide&) = delete;
  virtual ~HostSide() = default;

  // Takes the messages from `start` up to but not including `end`; the array stays the caller's.
  // Both may be null when the range is empty. May throw.
  virtual void sendBatchTowardsHost(Message* start, Message* end) = 0;
};

class TransportSide {
 public:
  TransportSide() = default;
  TransportSide(const TransportSide&) = delete;
  TransportSide& operator=(const TransportSide&) = delete;
  virtual ~TransportSide() = default;

  // As HostSide::sendBatchTowardsHost, in the other direction.
  virtual void sendBatchTowardsTransport(Message* start, Message* end) = 0;
};

} // namespace com::velanto::connectivity

#endif
