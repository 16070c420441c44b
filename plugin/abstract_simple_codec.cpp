#include "plugin/abstract_simple_codec.hpp"

#include <utility>

#include "plugin/probes.hpp"

namespace com::velanto::connectivity {

namespace {

// Calls `keep` for each message and moves the messages for which it returns true to the front, in
// order. Returns the end of the kept ones.
template <class Keep>
Message* keepInFront(Message* start, Message* end, const Keep& keep) {
  Message* out = start;
  for (Message* message = start; message != end; ++message) {
    if (!keep(*message)) continue;
    if (message != out) std::swap(*message, *out);
    ++out;
  }
  return out;
}

} // namespace

void AbstractSimpleCodec::sendBatchTowardsHost(Message* start, Message* end) {
  const probes::Batch probe;
  Message* const kept = keepInFront(start, end, [this](Message& message) {
    try {
      return message.getPayload().empty() ? transformNullPayloadTowardsHost(message)
                                          : transformMessageTowardsHost(message);
    } catch (...) {
      return handleException(message, false);
    }
  });
  probe.end(end - start, kept - start);
  if (hostSide) hostSide->sendBatchTowardsHost(start, kept);
}

void AbstractSimpleCodec::sendBatchTowardsTransport(Message* start, Message* end) {
  Message* const kept = keepInFront(start, end, [this](Message& message) {
    try {
      return message.getPayload().empty() ? transformNullPayloadTowardsTransport(message)
                                          : transformMessageTowardsTransport(message);
    } catch (...) {
      return handleException(message, true);
    }
  });
  if (transportSide) transportSide->sendBatchTowardsTransport(start, kept);
}

} // namespace com::velanto::connectivity
