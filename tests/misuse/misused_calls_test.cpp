// What each wrong, early, late or repeated call of the C interface gives. After every one of them
// the codec decodes the next notification as ever.
//
//   call                               result   line
//   any, null plug-in                  1        none; destroy: 0
//   link, null batch function          1        level 2; the previous link stays
//   link, null handle                  0
//   start, hostReady, shutdown         0        in any order, any number of times
//   batch before start, after shutdown 0        decoded and handed on as ever
//   batch of no messages, null or not  0        handed on as it is
//   create without configuration       null     level 2
//
// Wrong configurations are in tests/end_to_end/configuration_failures_test.cpp, wrong messages one
// by one in tests/conformance/, every value in every place in any_value_test.cpp.
#include <gtest/gtest.h>

#include <vector>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

using results_t = std::vector<int>;

struct call_t {
  const char* name;
  results_t (*make)(const PluginLibrary& library, void* codec);
  results_t results;
  std::vector<std::string> failures; // what level-2 lines say
};

const call_t CALLS[] = {
    {"null plug-in",
     [](const PluginLibrary& library, void*) -> results_t {
       return {library.start(nullptr),
               library.hostReady(nullptr),
               library.shutdown(nullptr),
               library.setNextTowardsHost(nullptr, nullptr, Received::take),
               library.setNextTowardsTransport(nullptr, nullptr, Received::take),
               library.sendBatchTowardsHost(nullptr, nullptr, nullptr),
               library.sendBatchTowardsTransport(nullptr, nullptr, nullptr),
               library.destroy(nullptr)};
     },
     {1, 1, 1, 1, 1, 1, 1, 0},
     {}},
    {"null batch function",
     [](const PluginLibrary& library, void* codec) -> results_t {
       return {library.setNextTowardsHost(codec, nullptr, nullptr),
               library.setNextTowardsTransport(codec, nullptr, nullptr)};
     },
     {1, 1},
     {"Exception from setNextTowardsHost: Cannot use a null batch function as a link",
      "Exception from setNextTowardsTransport: Cannot use a null batch function as a link"}},
    {"start twice",
     [](const PluginLibrary& library, void* codec) -> results_t {
       return {library.start(codec), library.start(codec)};
     },
     {0, 0},
     {}},
    {"hostReady before start",
     [](const PluginLibrary& library, void* codec) -> results_t {
       return {library.hostReady(codec), library.start(codec), library.hostReady(codec)};
     },
     {0, 0, 0},
     {}},
    {"shutdown twice, and started again",
     [](const PluginLibrary& library, void* codec) -> results_t {
       return {library.shutdown(codec), library.shutdown(codec), library.start(codec)};
     },
     {0, 0, 0},
     {}},
    {"batches after shutdown",
     [](const PluginLibrary& library, void* codec) -> results_t {
       library.shutdown(codec);
       return {library.sendBatchTowardsHost(codec, nullptr, nullptr),
               library.sendBatchTowardsTransport(codec, nullptr, nullptr)};
     },
     {0, 0},
     {}},
    {"empty range that is not null",
     [](const PluginLibrary& library, void* codec) -> results_t {
       Message message;
       return {library.sendBatchTowardsHost(codec, &message, &message),
               library.sendBatchTowardsTransport(codec, &message, &message)};
     },
     {0, 0},
     {}},
    {"null configuration",
     [](const PluginLibrary& library, void*) -> results_t {
       return {library.create("codec", "chain", nullptr, nullptr, nullptr) == nullptr ? 1 : 0};
     },
     {1},
     {"Exception from create: Get from empty"}},
    {"null configuration and names",
     [](const PluginLibrary& library, void*) -> results_t {
       return {library.create(nullptr, nullptr, nullptr, nullptr, nullptr) == nullptr ? 1 : 0};
     },
     {1},
     {"Exception from create: Get from empty"}},
};

class MisusedCalls : public EndToEnd {};

TEST_F(MisusedCalls, GiveWhatTheTableSaysAndLeaveTheCodecUsable) {
  for (const call_t& call : CALLS) {
    SCOPED_TRACE(call.name);
    LoadedCodec codec(library_, map_of("tenantId", text("t1")));
    EXPECT_EQ(call.make(library_, codec.plugin()), call.results);
    const lines_t lines = takeLog();
    ASSERT_EQ(lines.size(), call.failures.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
      EXPECT_EQ(lines[i].level, 2);
      EXPECT_TRUE(lines[i].text.ends_with("> " + call.failures[i])) << lines[i];
    }
    const Message event = codec.converted(notification(EVENT_PATH, eventPayload()));
    EXPECT_EQ(event.getPayload().type_tag(), std::uint32_t{VLT_TAG_MAP});
    EXPECT_EQ(takeLog(), lines_t{});
  }
}

TEST_F(MisusedCalls, NotificationsAreDecodedAfterShutdownToo) {
  LoadedCodec codec(library_, map_of("tenantId", text("t1")));
  library_.start(codec.plugin());
  library_.shutdown(codec.plugin());
  Message event = codec.converted(notification(EVENT_PATH, eventPayload()));
  EXPECT_EQ(at(event.getMetadataMap(), "vlt.type"), text("com.tivra.ostrovia.Event"));
}

TEST_F(MisusedCalls, CodecThatWasNeverStartedIsDestroyed) {
  const data_t settings = map_of("tenantId", text("t1"));
  void* const codec = library_.create("codec", "chain", settings.underlying(), nullptr, nullptr);
  EXPECT_EQ(library_.destroy(codec), 0);
  EXPECT_EQ(takeLog(), lines_t{});
}

TEST_F(MisusedCalls, CodecsOfOneNameAreCodecsOfTheirOwn) {
  auto first = std::make_unique<LoadedCodec>(library_, map_of("tenantId", text("t1")));
  LoadedCodec second(library_, map_of("tenantId", text("t2")));
  Message failing = notification(UNKNOWN_PATH, eventPayload());
  first->sendTowardsHost(failing);
  first.reset();
  Message event = second.converted(notification(EVENT_PATH, eventPayload()));
  EXPECT_EQ(at(event.getPayload().get<map_t>(), "tenantId"), text("t2"));
  EXPECT_EQ(takeLog(),
            (lines_t{dropped(" ('id' = '1'): Unrecognised Pulsar message type: 'inventory'")}));
}

} // namespace
} // namespace com::velanto::connectivity::test
