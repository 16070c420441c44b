// The two link interfaces on their own: rules for every link.
#include "plugin/sides.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace com::velanto::connectivity::test {
namespace {

// An element with a neighbour on both sides. Notes its destruction.
class Element final : public HostSide, public TransportSide {
 public:
  explicit Element(int& destroyed) : destroyed_(destroyed) {}
  ~Element() override { ++destroyed_; }
  void sendBatchTowardsHost(Message* start, Message* end) override { towards_host = end - start; }
  void sendBatchTowardsTransport(Message* start, Message* end) override {
    towards_transport = end - start;
  }

  std::ptrdiff_t towards_host = -1;
  std::ptrdiff_t towards_transport = -1;

 private:
  int& destroyed_;
};

TEST(Sides, LinksAreDestroyedThroughEitherInterface) {
  int destroyed = 0;
  { const std::unique_ptr<HostSide> link = std::make_unique<Element>(destroyed); }
  EXPECT_EQ(destroyed, 1);
  { const std::unique_ptr<TransportSide> link = std::make_unique<Element>(destroyed); }
  EXPECT_EQ(destroyed, 2);
}

TEST(Sides, OneElementServesBothDirections) {
  int destroyed = 0;
  Element element(destroyed);
  Message messages[3];
  static_cast<HostSide&>(element).sendBatchTowardsHost(messages, messages + 3);
  static_cast<TransportSide&>(element).sendBatchTowardsTransport(nullptr, nullptr);
  EXPECT_EQ(element.towards_host, 3);
  EXPECT_EQ(element.towards_transport, 0);
}

TEST(Sides, LinksHaveOneOwner) {
  EXPECT_FALSE(std::is_copy_constructible_v<Element>);
  EXPECT_FALSE(std::is_copy_assignable_v<Element>);
  EXPECT_TRUE(std::is_abstract_v<HostSide>);
  EXPECT_TRUE(std::is_abstract_v<TransportSide>);
}

} // namespace
} // namespace com::velanto::connectivity::test
