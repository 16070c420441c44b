// Makes the codec a plug-in: the twelve entry points under its name.
#include "codec/ostrovia_notifications2_codec.hpp"
#include "plugin/entry_points.hpp"

using com::velanto::connectivity::plugins::pulsar::OstroviaNotifications2Codec;

VLT_EXPORT_CODEC(OstroviaNotifications2Codec);
