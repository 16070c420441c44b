// The built plug-in as ostrovia-replay loads it: the documents show that tool's output, and log
// lines begin with the names that it gives.
#ifndef VLT_TESTS_DOCS_REPLAY_CODEC_HPP
#define VLT_TESTS_DOCS_REPLAY_CODEC_HPP

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {

class ReplayCodec : private LibraryHolder, public LoadedCodec {
 public:
  explicit ReplayCodec(const data_t& configuration)
      : LoadedCodec(library_, configuration, "OstroviaNotifications2Codec", "replay") {}
};

} // namespace com::velanto::connectivity::test

#endif
