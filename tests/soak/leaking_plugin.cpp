// A plug-in that passes every message on and leaks, for the soak test to find. It takes the place
// of the real plug-in, so it bears its name.
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
    // Written to, since a compiler may leave out memory that nobody reads or writes.
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
