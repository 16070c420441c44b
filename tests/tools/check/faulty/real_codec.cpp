// The codec's entry points under another class name, for the fronts of the faulty plug-ins.
#include "codec/ostrovia_notifications2_codec.hpp"
#include "plugin/entry_points.hpp"

using RealPlugin = com::velanto::connectivity::plugins::pulsar::OstroviaNotifications2Codec;

VLT_EXPORT_CODEC(RealPlugin);
