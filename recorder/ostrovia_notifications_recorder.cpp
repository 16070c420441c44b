#include "recorder/ostrovia_notifications_recorder.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

void OstroviaNotificationsRecorder::sendBatchTowardsHost(Message* start, Message* end) {
  if (hostSide) hostSide->sendBatchTowardsHost(start, end);
}

void OstroviaNotificationsRecorder::sendBatchTowardsTransport(Message* start, Message* end) {
  if (transportSide) transportSide->sendBatchTowardsTransport(start, end);
}

} // namespace com::velanto::connectivity::plugins::pulsar
