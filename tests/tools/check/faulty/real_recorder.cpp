// The recorder's entry points under another class name, for the front of the faulty recorders.
#include "plugin/entry_points.hpp"
#include "recorder/ostrovia_notifications_recorder.hpp"

using RealPlugin = com::velanto::connectivity::plugins::pulsar::OstroviaNotificationsRecorder;

VLT_EXPORT_CODEC(RealPlugin);
