#include "tests/conformance/case_runner.hpp"

#include <algorithm>
#include <span>

#include "tests/conformance/comparison.hpp"
#include "tests/support/stderr_capture.hpp"

namespace com::velanto::connectivity::test {

namespace {

class Plugin {
 public:
  Plugin(const PluginLibrary& library, const case_t& played)
      : library_(library),
        plugin_(
            library.create(CASE_PLUGIN, CASE_CHAIN,
                           played.null_configuration ? nullptr : played.configuration.underlying(),
                           nullptr, nullptr)) {}
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;
  ~Plugin() { EXPECT_EQ(library_.destroy(plugin_), 0); }

  [[nodiscard]] void* get() const { return plugin_; }

 private:
  const PluginLibrary& library_;
  void* plugin_;
};

void expectMessages(const std::vector<Message>& expected, const std::vector<Message>& actual) {
  EXPECT_EQ(actual.size(), expected.size()) << "messages that reached the next link";
  for (std::size_t i = 0; i < std::min(expected.size(), actual.size()); ++i) {
    EXPECT_EQ(difference(expected[i], actual[i], "out " + std::to_string(i + 1)), "");
  }
}

// What the next link has taken is left moved-from; anything else there was not handed on.
void expectTaken(std::span<const Message> taken) {
  const Message moved_from;
  for (const Message& message : taken) {
    EXPECT_EQ(difference(moved_from, message, "a message handed on"), "");
  }
}

// The order of dropped messages is nobody's business: each expected one is matched with one left.
void expectDropped(const std::vector<Message>& expected, std::span<const Message> actual) {
  std::vector<const Message*> left;
  for (const Message& message : actual) left.push_back(&message);
  EXPECT_EQ(left.size(), expected.size()) << "messages that were dropped";
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const auto same = [&](const Message* message) {
      return difference(expected[i], *message, "").empty();
    };
    const auto match = std::find_if(left.begin(), left.end(), same);
    if (match != left.end()) {
      left.erase(match);
    } else if (!left.empty()) {
      ADD_FAILURE() << difference(expected[i], *left.front(), "dropped " + std::to_string(i + 1));
    }
  }
}

} // namespace

void CaseRunner::TestBody() {
  case_t played = readCase(line_);
  const ::testing::ScopedTrace trace(place_.file.c_str(), place_.line, played.name);
  standin_set_default_log_level(played.log_level);
  EXPECT_EQ(stderr_of([&] { play(played); }), played.standard_error);
  EXPECT_EQ(takeLog(), played.log);
}

void CaseRunner::play(case_t& played) {
  const Plugin plugin(library_, played);
  ASSERT_EQ(plugin.get() != nullptr, played.created);
  case_t again = readCase(line_);
  EXPECT_EQ(difference(again.configuration, played.configuration, "configuration"), "");
  played.configuration = data_t(); // the caller's to free once create has returned
  if (played.created) playBatch(plugin.get(), played);
}

void CaseRunner::playBatch(void* plugin, case_t& played) {
  Received towards_host;
  Received towards_transport;
  ASSERT_EQ(library_.setNextTowardsHost(plugin, &towards_host, &Received::take), 0);
  ASSERT_EQ(library_.setNextTowardsTransport(plugin, &towards_transport, &Received::take), 0);
  ASSERT_EQ(library_.start(plugin), 0);
  ASSERT_EQ(library_.hostReady(plugin), 0);

  auto* const send =
      played.towards_transport ? library_.sendBatchTowardsTransport : library_.sendBatchTowardsHost;
  std::vector<Message>& batch = played.in;
  EXPECT_EQ(send(plugin, batch.data(), batch.data() + batch.size()), 0);
  EXPECT_EQ(library_.shutdown(plugin), 0);

  const Received& reached = played.towards_transport ? towards_transport : towards_host;
  EXPECT_EQ(reached.calls, 1) << "a batch is handed on in one call";
  EXPECT_EQ(towards_host.calls + towards_transport.calls, 1) << "and in one direction";
  expectMessages(played.out, reached.messages);

  const std::size_t kept = std::min(reached.messages.size(), batch.size());
  expectTaken(std::span(batch).first(kept));
  if (played.dropped) expectDropped(*played.dropped, std::span(batch).subspan(kept));
}

} // namespace com::velanto::connectivity::test
