// Samples with one changed value, at any depth: a value of every kind, a new kind, a null block or
// string. Or a map has one entry more, under a key of every kind, in a table of an odd capacity.
// The message arrives, or the codec reports it once and drops it. Its neighbours arrive, and
// nothing leaks.
#include <gtest/gtest.h>

#include <functional>

#include "tests/end_to_end/loaded_codec.hpp"
#include "tests/misuse/odd_values.hpp"
#include "tests/support/samples.hpp"

namespace com::velanto::connectivity::test {
namespace {

class MostSamplesHolder {
 protected:
  // All but the day of a site: its 401 notifications would take four times as long again.
  static std::vector<sample_t> read() {
    std::vector<sample_t> samples = readSamples();
    std::erase_if(samples, [](const sample_t& s) { return s.place.starts_with("site-day"); });
    return samples;
  }
  const std::vector<sample_t> samples_ = read();
};

class AnyValue : private MostSamplesHolder, public EndToEnd {
 protected:
  // All lines, traces included.
  AnyValue() { standin_set_default_log_level(6); }

  // Sends the message between two good ones, in both directions; returns the reason of its drop, ""
  // when it arrived.
  std::string send(LoadedCodec& codec, Message&& odd) {
    std::vector<Message> batch;
    batch.push_back(notification(EVENT_PATH, eventPayload("before")));
    batch.push_back(std::move(odd));
    batch.push_back(notification(EVENT_PATH, eventPayload("after")));
    EXPECT_EQ(codec.sendTowardsTransport(batch), 0);
    std::vector<Message> passed = std::move(codec.transport.messages);
    EXPECT_EQ(passed.size(), 3U);
    EXPECT_EQ(codec.sendTowardsHost(passed), 0);
    const std::vector<Message> arrived = std::move(codec.host.messages);
    codec.transport.messages.clear();
    codec.host.messages.clear();
    std::vector<std::string> reports;
    for (log_line_t& line : takeLog()) {
      if (line.level == 3) reports.push_back(std::move(line.text));
    }
    const bool is_dropped = arrived.size() == 2;
    EXPECT_TRUE(is_dropped || arrived.size() == 3);
    EXPECT_EQ(reports.size(), is_dropped ? 1U : 0U);
    expectId(arrived.front(), "before");
    expectId(arrived.back(), "after");
    return reports.empty() ? "" : reports.front();
  }

  static void expectId(const Message& event, const char* id) {
    ASSERT_EQ(event.getPayload().type_tag(), std::uint32_t{VLT_TAG_MAP});
    const data_t* const found = event.getPayload().get<map_t>().find_value(text("id"));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(*found, text(id));
  }

  // `alter(message, place)` changes the message at one of its places; false: it has no such place.
  // Sends each altered sample twice, since the result of a message depends on nothing else.
  void sweep(const std::function<bool(Message&, std::size_t)>& alter) {
    LoadedCodec codec(library_, mapOf("tenantId", text("t1")));
    for (const sample_t& sample : samples_) {
      for (std::size_t place = 0;; ++place) {
        const std::int64_t before = standin_live_blocks_total();
        {
          Message first = copyOf(sample.message);
          Message second = copyOf(sample.message);
          if (!alter(first, place)) break;
          ASSERT_TRUE(alter(second, place));
          ++(send(codec, std::move(first)).empty() ? arrived_ : dropped_);
          static_cast<void>(send(codec, std::move(second)));
        }
        ASSERT_EQ(standin_live_blocks_total(), before) << sample.place << ", place " << place;
        ASSERT_FALSE(HasFailure()) << sample.place << ", place " << place;
      }
    }
  }

  int arrived_ = 0;
  int dropped_ = 0;
};

TEST_F(AnyValue, InThePlaceOfAnyOther) {
  for (const odd_value_t& odd : ODD_VALUES) {
    SCOPED_TRACE(odd.name);
    sweep([&odd](Message& message, std::size_t place) {
      data_t* const value = valueAt(message, place);
      if (value == nullptr) return false;
      *value = odd.make();
      return true;
    });
  }
  EXPECT_GT(arrived_, 1000);
  EXPECT_GT(dropped_, 1000);
}

TEST_F(AnyValue, AsTheKeyOfAnAddedEntry) {
  for (const odd_value_t& odd : ODD_VALUES) {
    SCOPED_TRACE(odd.name);
    if (odd.make().empty()) continue; // an entry without a key is none
    sweep([&odd](Message& message, std::size_t place) {
      map_t* const map = mapAt(message, place);
      if (map == nullptr) return false;
      *map = rebuiltWith(std::move(*map), odd.make());
      return true;
    });
  }
  EXPECT_GT(arrived_, 1000);
  EXPECT_GT(dropped_, 1000);
}

TEST_F(AnyValue, CustomKeyOfAFieldIsRefused) {
  LoadedCodec codec(library_, mapOf("tenantId", text("t1")));
  EXPECT_EQ(send(codec, notification(EVENT_PATH, rebuiltWith(eventPayload("4711"), custom()))),
            dropped(" ('id' = '4711'): Cannot use custom values as a key").text);
}

// Capacities that no table grows through, down to one without a free slot, and counts of deletions
// that nothing in the table shows.
TEST_F(AnyValue, TablesOfAnyCapacityAreRead) {
  LoadedCodec codec(library_, mapOf("tenantId", text("t1")));
  for (const std::int64_t capacity : {5, 6, 7, 9, 11, 13, 29, 101, 1000}) {
    for (const std::int64_t deleted : {0, 3, 5000}) {
      SCOPED_TRACE(std::to_string(capacity) + " slots, " + std::to_string(deleted) + " deleted");
      map_t payload = rebuilt(eventPayload("4711"), capacity);
      head_of(payload).deleted = deleted;
      Message message(std::move(payload), rebuilt(mapOf("pulsarPath", text(EVENT_PATH)), 1));
      EXPECT_EQ(send(codec, std::move(message)), "");
    }
  }
}

} // namespace
} // namespace com::velanto::connectivity::test
