// A list reads the host's block in place; its iterators notice when the list changes under them.
#include "value/list_t.hpp"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"
#include "tests/value/skipped_checks.hpp"

namespace com::velanto::connectivity::test {
namespace {

static_assert(sizeof(list_t) == sizeof(void*));

constexpr const char* LIST_MODIFIED = "Iterator invalidated by modifying list";

class ListT : public HostFixture {
 protected:
  // 10, 20, 30 in a block with room for five.
  ListT() {
    for (std::size_t i = 0; i < 3; ++i) list_[i] = whole(static_cast<std::int64_t>(10 * (i + 1)));
  }

  vlt_underlying_vector_t* block_ = standin_make_list(3, 5);
  list_t list_ = list_t(block_);
};

TEST_F(ListT, NullListHasNoElements) {
  const list_t list;
  EXPECT_EQ(list.size(), 0u);
  EXPECT_TRUE(list.begin() == list.end());
}

TEST_F(ListT, SizeIsTheCountNotTheCapacity) { EXPECT_EQ(list_.size(), 3u); }

TEST_F(ListT, ElementsStartAtTheBlocksSixteenthByte) {
  const char* const block = reinterpret_cast<const char*>(block_);
  const list_t& constant = list_;
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(static_cast<const void*>(&list_[i]), block + 16 + 16 * i);
    EXPECT_EQ(static_cast<const void*>(&constant[i]), block + 16 + 16 * i);
  }
}

TEST_F(ListT, IteratorsVisitTheElementsInOrder) {
  std::vector<std::int64_t> visited;
  for (const data_t& element : list_) visited.push_back(element.get<std::int64_t>());
  EXPECT_EQ(visited, (std::vector<std::int64_t>{10, 20, 30}));
  for (data_t& element : list_) element = text("changed");
  EXPECT_EQ(list_[2], text("changed"));
}

TEST_F(ListT, IteratorStepsToTheEnd) {
  auto it = list_.begin();
  EXPECT_EQ(&*it, &list_[0]);
  EXPECT_EQ((*++it).get<std::int64_t>(), 20);
  EXPECT_EQ(&*++it, &list_[2]);
  EXPECT_TRUE(it != list_.end());
  EXPECT_TRUE(++it == list_.end());
}

TEST_F(ListT, MoveLeavesTheSourceNull) {
  standin_reset_calls();
  list_t target(std::move(list_));
  list_t assigned;
  assigned = std::move(target);
  EXPECT_EQ(standin_calls_total(), 0);
  EXPECT_EQ(list_.size(), 0u);
  EXPECT_EQ(target.size(), 0u);
  EXPECT_EQ(assigned.size(), 3u);
}

TEST_F(ListT, MoveAssignmentFreesTheTargetsBlock) {
  list_t other(standin_make_list(1, 1));
  standin_reset_calls();
  list_ = std::move(other);
  EXPECT_EQ(standin_calls(STANDIN_FREE_VECTOR), 1);
  EXPECT_EQ(list_.size(), 1u);
}

TEST_F(ListT, MoveAssignmentToItselfKeepsTheElements) {
  list_t& alias = list_;
  list_ = std::move(alias);
  EXPECT_EQ(list_.size(), 3u);
}

TEST_F(ListT, EqualityNeedsCountAndElements) {
  list_t other(standin_make_list(3, 3));
  for (std::size_t i = 0; i < 3; ++i) other[i] = list_[i];
  EXPECT_TRUE(list_ == other);
  other[2] = whole(31);
  EXPECT_FALSE(list_ == other);
  EXPECT_FALSE(list_ == list_t(standin_make_list(2, 2)));
  EXPECT_TRUE(list_t() == list_t(standin_make_list(0, 2)));
}

// ---- iterator faults: the count changes, or the block goes away

TEST_F(ListT, ChangedCountStopsAnAdvance) {
  auto it = list_.begin();
  block_->count = 4;
  EXPECT_EQ(errorOf([&] { ++it; }), LIST_MODIFIED);
  EXPECT_EQ(errorOf([&] { ++it; }), LIST_MODIFIED);
  EXPECT_EQ((*it).get<std::int64_t>(), 10) << "a failing advance must not move";
}

TEST_F(ListT, ChangedCountStopsAComparison) {
  const auto it = list_.begin();
  const auto end = list_.end();
  block_->count = 2;
  EXPECT_EQ(errorOf([&] { static_cast<void>(it == end); }), LIST_MODIFIED);
  EXPECT_EQ(errorOf([&] { static_cast<void>(it != end); }), LIST_MODIFIED);
}

TEST_F(ListT, ComparisonNoticesAStaleIteratorOnEitherSide) {
  const auto stale = list_.begin();
  block_->count = 2;
  const auto fresh = list_.begin();
  EXPECT_EQ(errorOf([&] { static_cast<void>(stale == fresh); }), LIST_MODIFIED);
  EXPECT_EQ(errorOf([&] { static_cast<void>(fresh == stale); }), LIST_MODIFIED);
}

TEST_F(ListT, LostBlockStopsAdvanceAndComparison) {
  auto it = list_.begin();
  const list_t taken(std::move(list_));
  EXPECT_EQ(errorOf([&] { ++it; }), LIST_MODIFIED);
  EXPECT_EQ(errorOf([&] { static_cast<void>(it == it); }), LIST_MODIFIED);
}

TEST_F(ListT, LostBlockIsNoticedEvenWithoutElements) {
  list_t list(standin_make_list(0, 1));
  auto it = list.begin();
  const list_t taken(std::move(list));
  EXPECT_EQ(errorOf([&] { static_cast<void>(it == it); }), LIST_MODIFIED);
}

TEST_F(ListT, ConstIteratorsNoticeTheSameFaults) {
  auto it = static_cast<const list_t&>(list_).begin();
  block_->count = 2;
  EXPECT_EQ(errorOf([&] { ++it; }), LIST_MODIFIED);
  EXPECT_EQ(errorOf([&] { static_cast<void>(it == it); }), LIST_MODIFIED);
}

TEST_F(ListT, FaultsAreRuntimeErrors) {
  auto it = list_.begin();
  block_->count = 2;
  EXPECT_THROW(++it, std::runtime_error);
}

TEST_F(ListT, IteratorOfNoListEqualsItsLikeAlone) {
  list_t::iterator none;
  EXPECT_TRUE(none == list_t::iterator());
  EXPECT_EQ(errorOf([&] { ++none; }), LIST_MODIFIED);
  EXPECT_EQ(errorOf([&] { ++none; }), LIST_MODIFIED);
  EXPECT_EQ(errorOf([&] { static_cast<void>(none == list_.begin()); }), LIST_MODIFIED);
  EXPECT_EQ(errorOf([&] { static_cast<void>(list_.begin() == none); }), LIST_MODIFIED);
  const SkippedChecks skipped;
  EXPECT_EQ(errorOf([&] { ++none; }), "nothing thrown");
}

TEST_F(ListT, ElementsMayChangeUnderAnIterator) {
  auto it = list_.begin();
  list_[1] = text("other");
  EXPECT_EQ(*++it, text("other"));
}

TEST_F(ListT, SkippedChecksLetTheOperationGoOn) {
  auto it = list_.begin();
  const auto end = list_.end();
  block_->count = 2;
  const SkippedChecks skipped;
  EXPECT_EQ((*++it).get<std::int64_t>(), 20);
  EXPECT_FALSE(it == end);
}

TEST_F(ListT, SwitchCountsAtTheMomentOfAFault) {
  auto it = list_.begin();
  block_->count = 2;
  {
    const SkippedChecks skipped;
    EXPECT_EQ(errorOf([&] { ++it; }), "nothing thrown");
  }
  EXPECT_EQ(errorOf([&] { ++it; }), LIST_MODIFIED);
}

} // namespace
} // namespace com::velanto::connectivity::test
