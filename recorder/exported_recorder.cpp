// Makes the recorder a plug-in: the twelve entry points under its name.
#include "plugin/entry_points.hpp"
#include "recorder/ostrovia_notifications_recorder.hpp"

using com::velanto::connectivity::plugins::pulsar::OstroviaNotificationsRecorder;

VLT_EXPORT_CODEC(OstroviaNotificationsRecorder);
