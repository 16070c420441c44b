// Turns a batch call into one call per message. A hook that returns true keeps its message; a hook
// that returns false or throws drops it. Kept messages move to the front of the range in their order
// and go to the next link in one call. Dropped messages come after them, in no particular order: the
// caller owns the whole range.
#ifndef VLT_PLUGIN_ABSTRACT_SIMPLE_CODEC_HPP
#define VLT_PLUGIN_ABSTRACT_SIMPLE_CODEC_HPP

#include "plugin/abstract_codec.hpp"

namespace com::velanto::connectivity {

class AbstractSimpleCodec : public AbstractCodec {
 public:
  using AbstractCodec::AbstractCodec;

  // Calls the next link exactly once, with an empty range too; without a link the batch goes
  // nowhere. Exceptions of handleException and the next link leave these calls.
  void sendBatchTowardsHost(Message* start, Message* end) override;
  void sendBatchTowardsTransport(Message* start, Message* end) override;

  // Each returns true to keep the message. May throw.
  virtual bool transformMessageTowardsHost(Message& message) = 0;
  virtual bool transformMessageTowardsTransport(Message& message) = 0;
  // For messages with an empty payload.
  virtual bool transformNullPayloadTowardsHost(Message&) { return true; }
  virtual bool transformNullPayloadTowardsTransport(Message&) { return true; }
  // Called inside the catch clause of a transformation that threw, so that it can inspect the
  // exception in flight. Returns true to keep the message all the same.
  virtual bool handleException(Message& message, bool towards_transport) = 0;
};

} // namespace com::velanto::connectivity

#endif
