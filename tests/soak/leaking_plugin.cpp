// A plug-in that sends on whatever comes and leaks, for the soak test to find. It stands where the
// real plug-in would, so it bears that one's name.
//
//   VLT_LEAK_BLOCKS    a block of the host for every 10 000 messages towards it
//   otherwise          64 bytes for each message
#include <cstdlib>

#include "plugin/abstract_simple_codec.hpp"
#include "plugin/entry_points.hpp"

namespace com::velanto::connectivity::test {

namespace {

class OstroviaNotifications2Codec final : public AbstractSimpleCodec {
 public:
  using AbstractSimpleCodec::AbstractSimpleCodec;

  void start() override {}
  void hostReady() override {}
  void shutdown() override {}
  bool transformMessageTowardsHost(Message&) override {
#ifdef VLT_LEAK_BLOCKS
    static int messages = 0;
    if (++messages % 10'000 == 0) static_cast<void>(vlt_allocate_map(1));
#else
    // Written to, since what nobody reads or writes need not be allocated.
    static_cast<volatile char*>(std::malloc(64))[0] = 1;
#endif
    return true;
  }
  bool transformMessageTowardsTransport(Message&) override { return true; }
  bool handleException(Message&, bool) override { return false; }
};

} // namespace

} // namespace com::velanto::connectivity::test

using com::velanto::connectivity::test::OstroviaNotifications2Codec;

VLT_EXPORT_CODEC(OstroviaNotifications2Codec);
