// Every fault that a field can have, in every kind of notification. None of them throws an exception,
// since unwinding costs more than a conversion.
#include <string>
#include <vector>

#include "tests/codec/codec_fixture.hpp"
#include "tests/support/exceptions_thrown.hpp"
#include "tests/support/stderr_capture.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

std::vector<std::string> keysOf(const map_t& map) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : map) keys.emplace_back(key.get<const char*>());
  return keys;
}

// The wrong values for a field. The empty value means a missing field.
std::vector<data_t> replacements() {
  std::vector<data_t> values(1);
  values.push_back(truth(true));
  values.push_back(whole(7));
  values.push_back(nullText());
  values.push_back(text("neither a time nor a state"));
  values.emplace_back(mapOf("name", text("without an id")));
  return values;
}

class FaultyNotifications : public CodecFixture,
                            public ::testing::WithParamInterface<std::size_t> {};

TEST_P(FaultyNotifications, AreDroppedWithoutAnException) {
  std::vector<std::ptrdiff_t> sizes;
  const auto codec = CodecFixture::codec();
  codec->setNextTowardsHost(std::make_unique<CountingLink>(sizes));
  std::ptrdiff_t sent = 0;
  stderrOf([&] {
    for (const std::string& key : keysOf(EXAMPLES[GetParam()].payload())) {
      for (const data_t& value : replacements()) {
        Message message = example(GetParam());
        auto& payload = message.getPayload().get<map_t>();
        remove(payload, key.c_str());
        if (!value.empty()) payload.insert(text(key.c_str()), data_t(value));
        const std::int64_t before = exceptionsThrown();
        codec->sendBatchTowardsHost(&message, &message + 1);
        EXPECT_EQ(exceptionsThrown() - before, 0) << key;
        ++sent;
      }
    }
  });
  std::ptrdiff_t kept = 0;
  for (const std::ptrdiff_t size : sizes) kept += size;
  EXPECT_LT(kept, sent) << "none was faulty";
  EXPECT_EQ(static_cast<std::ptrdiff_t>(takeLog().size()), sent - kept);
}

INSTANTIATE_TEST_SUITE_P(Kinds, FaultyNotifications,
                         ::testing::Range(std::size_t{0}, std::size(EXAMPLES)),
                         [](const auto& kind) { return std::string(EXAMPLES[kind.param].kind); });

TEST_F(CodecFixture, UnknownKindOrListCausesNoException) {
  const auto codec = CodecFixture::codec();
  Message messages[] = {notification("a/b/inventory/1", mapOf("id", text("1"))),
                        notification("a/b/alarms/1", listOf(text("1")))};
  const std::int64_t before = exceptionsThrown();
  stderrOf([&] { codec->sendBatchTowardsHost(std::begin(messages), std::end(messages)); });
  EXPECT_EQ(exceptionsThrown() - before, 0);
  EXPECT_EQ(takeLog().size(), 2U);
}

TEST_F(CodecFixture, ExceptionsAreCounted) {
  const std::int64_t before = exceptionsThrown();
  EXPECT_THROW(throw 42, int);
  EXPECT_EQ(exceptionsThrown() - before, 1);
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
