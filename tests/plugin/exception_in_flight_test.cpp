// The text of what a catch clause has caught, whether the clause announces it or not.
#include "plugin/exception_in_flight.hpp"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <thread>

namespace com::velanto::connectivity::test {
namespace {

// The text that a hook sees which runs inside a catch clause for what `action` throws.
template <class Action>
std::string seen_unannounced(const Action& action) {
  try {
    action();
  } catch (...) {
    const char* const what = ExceptionInFlight::what();
    return what == nullptr ? "null" : what;
  }
  return "nothing thrown";
}

// Counts how often it is asked.
class CountingException final : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override {
    ++asked;
    return "counted";
  }
  mutable int asked = 0;
};

TEST(ExceptionInFlight, UnannouncedTextIsThatOfTheException) {
  EXPECT_EQ(seen_unannounced([] { throw std::runtime_error("boom"); }), "boom");
  EXPECT_EQ(seen_unannounced([] { throw CountingException(); }), "counted");
  EXPECT_EQ(seen_unannounced([] { throw std::bad_alloc(); }), std::bad_alloc().what());
}

TEST(ExceptionInFlight, AnythingElseHasNoText) {
  EXPECT_EQ(seen_unannounced([] { throw 42; }), "null");
  EXPECT_EQ(seen_unannounced([] { throw "text"; }), "null");
  EXPECT_EQ(seen_unannounced([] { throw std::string("text"); }), "null");
}

TEST(ExceptionInFlight, TextIsValidAsLongAsTheClauseRuns) {
  try {
    throw std::runtime_error("a text that is longer than a short string holds");
  } catch (const std::exception& e) {
    const char* const first = ExceptionInFlight::what();
    EXPECT_EQ(first, e.what());
    EXPECT_EQ(ExceptionInFlight::what(), first);
    EXPECT_STREQ(first, "a text that is longer than a short string holds");
  }
}

TEST(ExceptionInFlight, AnnouncedTextIsThatOfTheException) {
  try {
    throw std::runtime_error("boom");
  } catch (const std::exception& e) {
    const ExceptionInFlight caught(e);
    EXPECT_EQ(ExceptionInFlight::what(), e.what());
  }
}

// Nothing is in flight here, so that throwing it again would end the process.
TEST(ExceptionInFlight, AnnouncedOneIsNotThrownAgain) {
  const CountingException exception;
  const ExceptionInFlight caught(exception);
  EXPECT_STREQ(ExceptionInFlight::what(), "counted");
  EXPECT_EQ(exception.asked, 1);
}

TEST(ExceptionInFlight, InnerAnnouncementHidesTheOuterWhileItLives) {
  const std::runtime_error outer("outer");
  const ExceptionInFlight caught(outer);
  {
    const std::runtime_error middle("middle");
    const ExceptionInFlight caught_inside(middle);
    {
      const std::runtime_error inner("inner");
      const ExceptionInFlight caught_innermost(inner);
      EXPECT_STREQ(ExceptionInFlight::what(), "inner");
    }
    EXPECT_STREQ(ExceptionInFlight::what(), "middle");
  }
  EXPECT_STREQ(ExceptionInFlight::what(), "outer");
}

TEST(ExceptionInFlight, SomethingElseAnnouncedInsideAnOuterOneHasNoText) {
  const std::runtime_error error("outer");
  const ExceptionInFlight outer(error);
  {
    const ExceptionInFlight unknown;
    EXPECT_EQ(ExceptionInFlight::what(), nullptr);
  }
  EXPECT_STREQ(ExceptionInFlight::what(), "outer");
}

TEST(ExceptionInFlight, AnnouncementEndsWithItsScope) {
  {
    const std::runtime_error announced("announced");
    const ExceptionInFlight caught(announced);
  }
  EXPECT_EQ(seen_unannounced([] { throw std::runtime_error("next"); }), "next");
  EXPECT_EQ(seen_unannounced([] { throw 42; }), "null");
}

TEST(ExceptionInFlight, AnnouncementEndsWhenItsScopeIsLeftByAnException) {
  const auto failing = [] {
    const std::runtime_error announced("announced");
    const ExceptionInFlight caught(announced);
    throw std::runtime_error("next");
  };
  EXPECT_EQ(seen_unannounced(failing), "next");
}

TEST(ExceptionInFlight, AnnouncementIsSeenByItsThreadOnly) {
  const std::runtime_error announced("announced");
  const ExceptionInFlight caught(announced);
  std::string seen;
  std::thread other(
      [&] { seen = seen_unannounced([] { throw std::runtime_error("elsewhere"); }); });
  other.join();
  EXPECT_EQ(seen, "elsewhere");
  EXPECT_STREQ(ExceptionInFlight::what(), "announced");
}

} // namespace
} // namespace com::velanto::connectivity::test
