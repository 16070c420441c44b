// The codec's entry points under another class name, for the faulty plug-ins to stand in front of.
#include "codec/ostrovia_notifications2_codec.hpp"
#include "plugin/entry_points.hpp"

using RealCodec = com::velanto::connectivity::plugins::pulsar::OstroviaNotifications2Codec;

VLT_EXPORT_CODEC(RealCodec);
