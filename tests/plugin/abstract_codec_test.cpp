// The links that a codec keeps: replaced, emptied, and released at the end.
#include "plugin/abstract_codec.hpp"

#include <memory>

#include "tests/plugin/links.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {
namespace {

using entries_t = std::vector<std::string>;

// Passes every batch on to any link.
class Passage : public AbstractCodec {
 public:
  Passage()
      : AbstractCodec(PluginConstructorParameters("codec", "chain", map_t(), nullptr, nullptr)) {}
  using Plugin::userStatusReporter;

  [[nodiscard]] bool linkedTowardsHost() const { return hostSide != nullptr; }
  [[nodiscard]] bool linkedTowardsTransport() const { return transportSide != nullptr; }
  void sendBatchTowardsHost(Message* start, Message* end) override {
    hostSide->sendBatchTowardsHost(start, end);
  }
  void sendBatchTowardsTransport(Message* start, Message* end) override {
    transportSide->sendBatchTowardsTransport(start, end);
  }
};

class AbstractCodecTest : public HostFixture {
 protected:
  std::unique_ptr<RecordingLink> link(const char* name) {
    return std::make_unique<RecordingLink>(journal_, name);
  }

  journal_t journal_;
};

TEST_F(AbstractCodecTest, HasNoLinksAtFirst) {
  const Passage codec;
  EXPECT_FALSE(codec.linkedTowardsHost());
  EXPECT_FALSE(codec.linkedTowardsTransport());
}

TEST_F(AbstractCodecTest, LinksOfBothDirectionsAreIndependent) {
  Passage codec;
  codec.setNextTowardsHost(link("h"));
  EXPECT_FALSE(codec.linkedTowardsTransport());
  codec.setNextTowardsTransport(link("t"));
  Message message(whole(1));
  codec.sendBatchTowardsHost(&message, &message + 1);
  codec.sendBatchTowardsTransport(&message, &message + 1);
  EXPECT_EQ(journal_.entries, (entries_t{"h towards host: 1", "t towards transport: 1"}));
}

TEST_F(AbstractCodecTest, NewLinkDestroysThePreviousOne) {
  Passage codec;
  codec.setNextTowardsHost(link("h1"));
  codec.setNextTowardsTransport(link("t1"));
  codec.setNextTowardsHost(link("h2"));
  EXPECT_EQ(journal_.entries, entries_t{"~h1"});
  codec.setNextTowardsTransport(link("t2"));
  EXPECT_EQ(journal_.entries, (entries_t{"~h1", "~t1"}));
}

TEST_F(AbstractCodecTest, LinkCanBeTakenAway) {
  Passage codec;
  codec.setNextTowardsHost(link("h"));
  codec.setNextTowardsHost(nullptr);
  EXPECT_EQ(journal_.entries, entries_t{"~h"});
  EXPECT_FALSE(codec.linkedTowardsHost());
}

TEST_F(AbstractCodecTest, DestructionReleasesTheTransportSideFirst) {
  {
    Passage codec;
    codec.setNextTowardsHost(link("h"));
    codec.setNextTowardsTransport(link("t"));
  }
  EXPECT_EQ(journal_.entries, (entries_t{"~t", "~h"}));
}

TEST_F(AbstractCodecTest, DestructionReleasesLinksBeforeTheStatus) {
  standin_set_status_sink(
      [](void* journal, void*, const vlt_underlying_map_table_t*) {
        static_cast<journal_t*>(journal)->entries.emplace_back("status");
      },
      &journal_);
  {
    Passage codec;
    codec.setNextTowardsHost(link("h"));
    codec.userStatusReporter = std::make_unique<UserStatusReporter>(
        UserStatusReporter{nullptr, mapOf("state", text("up"))});
  }
  standin_set_status_sink(nullptr, nullptr);
  EXPECT_EQ(journal_.entries, (entries_t{"~h", "status"}));
}

TEST_F(AbstractCodecTest, CodecIsTheNextLinkOfANeighbour) {
  auto neighbour = std::make_unique<Passage>();
  neighbour->setNextTowardsHost(link("h"));
  Passage codec;
  codec.setNextTowardsHost(std::move(neighbour));
  Message messages[2] = {Message(whole(1)), Message(whole(2))};
  codec.sendBatchTowardsHost(messages, messages + 2);
  EXPECT_EQ(journal_.entries, entries_t{"h towards host: 1 2"});
}

TEST_F(AbstractCodecTest, CodecIsALinkTowardsTheTransportToo) {
  auto neighbour = std::make_unique<Passage>();
  neighbour->setNextTowardsTransport(link("t"));
  Passage codec;
  codec.setNextTowardsTransport(std::move(neighbour));
  codec.sendBatchTowardsTransport(nullptr, nullptr);
  EXPECT_EQ(journal_.entries, entries_t{"t towards transport:"});
}

} // namespace
} // namespace com::velanto::connectivity::test
