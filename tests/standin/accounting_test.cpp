// Counts of live blocks and calls, within one thread and across threads that come and go.
#include "standin/standin.h"

#include <pthread.h>

#include <thread>
#include <vector>

#include "host/logging.h"
#include "host/status.h"
#include "tests/standin/values.hpp"

namespace standin::test {
namespace {

using Accounting = Blocks;

int64_t liveDuring(standin_block_t kind, const data_t& value) {
  const int64_t live = standin_live_blocks(kind);
  freeData(value);
  return live - standin_live_blocks(kind);
}

TEST_F(Accounting, EachKindHasItsOwnCount) {
  EXPECT_EQ(liveDuring(STANDIN_BLOCK_MAP, map(vlt_allocate_map(8))), 1);
  EXPECT_EQ(liveDuring(STANDIN_BLOCK_STRING, string("a")), 1);
  EXPECT_EQ(liveDuring(STANDIN_BLOCK_LIST, list({})), 1);
  EXPECT_EQ(liveDuring(STANDIN_BLOCK_BUFFER, buffer("a")), 1);
  EXPECT_EQ(liveDuring(STANDIN_BLOCK_CUSTOM, custom(1)), 1);
}

TEST_F(Accounting, TotalCountsEveryBlockOfANestedValue) {
  const int64_t before = standin_live_blocks_total();
  const Held value(list({string("a"), buffer("b"), custom(1), map(vlt_allocate_map(0))}));
  EXPECT_EQ(standin_live_blocks_total() - before, 5);
}

TEST_F(Accounting, UnknownKindCountsNothing) {
  EXPECT_EQ(standin_live_blocks(STANDIN_BLOCK_KINDS), 0);
  EXPECT_EQ(standin_calls(STANDIN_FUNCTIONS), 0);
}

TEST_F(Accounting, ReallocatedTableIsStillOneBlock) {
  const int64_t before = standin_live_blocks(STANDIN_BLOCK_MAP);
  table_t* grown = vlt_reallocate_map(vlt_allocate_map(8), 16);
  EXPECT_EQ(standin_live_blocks(STANDIN_BLOCK_MAP) - before, 1);
  vlt_free_map(grown);
}

TEST_F(Accounting, BlockFreedOnAnotherThreadIsDead) {
  const int64_t before = standin_live_blocks(STANDIN_BLOCK_STRING);
  char* text = vlt_copy_string("a");
  std::thread([text] { vlt_free_string(text); }).join();
  EXPECT_EQ(standin_live_blocks(STANDIN_BLOCK_STRING), before);
}

TEST_F(Accounting, BlockOutlivesTheThreadThatMadeIt) {
  const int64_t before = standin_live_blocks(STANDIN_BLOCK_STRING);
  char* text = nullptr;
  std::thread([&text] { text = vlt_copy_string("a"); }).join();
  EXPECT_EQ(standin_live_blocks(STANDIN_BLOCK_STRING) - before, 1);
  vlt_free_string(text);
}

TEST_F(Accounting, ThreadsAtWorkTogetherLoseNoCount) {
  constexpr int PER_THREAD = 20000;
  standin_reset_calls();
  const int64_t before = standin_live_blocks(STANDIN_BLOCK_STRING);
  std::vector<std::vector<char*>> made(4);
  std::vector<std::thread> threads;
  threads.reserve(made.size());
  for (auto& own : made) {
    threads.emplace_back([&own] {
      for (int i = 0; i < PER_THREAD; ++i) own.push_back(vlt_copy_string("a"));
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(standin_live_blocks(STANDIN_BLOCK_STRING) - before, 4 * PER_THREAD);
  EXPECT_EQ(standin_calls(STANDIN_COPY_STRING), 4 * PER_THREAD);
  for (const auto& own : made) {
    for (char* text : own) vlt_free_string(text);
  }
}

TEST_F(Accounting, SnapshotsWorkWhileThreadsComeAndGo) {
  standin_reset_calls();
  std::thread counted([] {
    for (int i = 0; i < 200; ++i) std::thread([] { vlt_free_string(vlt_copy_string("a")); }).join();
  });
  int64_t last = 0;
  while (last < 200) {
    const int64_t now = standin_calls(STANDIN_FREE_STRING);
    ASSERT_GE(now, last);
    last = now;
  }
  counted.join();
  EXPECT_EQ(standin_calls_total(), 400);
}

void freeString(void* text) { vlt_free_string(static_cast<char*>(text)); }

// The thread's counters are gone by then: the key of the test is younger than the library's.
TEST_F(Accounting, LastDestructorsOfAThreadCountTheirCalls) {
  vlt_free_string(vlt_copy_string("a"));
  const int64_t before = standin_live_blocks(STANDIN_BLOCK_STRING);
  pthread_key_t key{};
  ASSERT_EQ(pthread_key_create(&key, freeString), 0);
  standin_reset_calls();
  std::thread([key] { pthread_setspecific(key, vlt_copy_string("a")); }).join();
  EXPECT_EQ(standin_calls(STANDIN_FREE_STRING), 1);
  EXPECT_EQ(standin_live_blocks(STANDIN_BLOCK_STRING), before);
  pthread_key_delete(key);
}

TEST_F(Accounting, InternalCopiesAndFreesAreNoCalls) {
  const Held value(list({string("a"), list({string("b")})}));
  standin_reset_calls();
  const Held copy(vlt_copy_data(&value.value));
  EXPECT_EQ(standin_calls(STANDIN_COPY_DATA), 1);
  EXPECT_EQ(standin_calls_total(), 1);
}

TEST_F(Accounting, ResetZeroesCallsAndKeepsLiveBlocks) {
  const int64_t before = standin_live_blocks_total();
  const Held text(string("a"));
  EXPECT_GT(standin_calls_total(), 0);
  standin_reset_calls();
  EXPECT_EQ(standin_calls_total(), 0);
  EXPECT_EQ(standin_calls(STANDIN_COPY_STRING), 0);
  EXPECT_EQ(standin_live_blocks_total() - before, 1);
}

void ignoreLine(void*, const char*, vlt_log_level_t, const char*) {}
void ignoreStatus(void*, void*, const vlt_underlying_map_table_t*) {}

TEST_F(Accounting, EachFunctionHasItsOwnCount) {
  standin_set_log_sink(ignoreLine, nullptr);
  standin_set_status_sink(ignoreStatus, nullptr);
  standin_reset_calls();
  const data_t source = integer(1);
  vlt_free_map(vlt_reallocate_map(vlt_allocate_map(1), 2));
  vlt_copy_data(&source);
  vlt_free_string(vlt_copy_string("a"));
  vlt_free_vector(nullptr);
  vlt_free_buffer(nullptr);
  vlt_free_custom({nullptr});
  const data_t text = vlt_data_to_string(&source);
  vlt_hash_string("a", 1);
  vlt_get_log_level("a");
  vlt_log_at("a", 1, "a");
  vlt_set_user_status_map(nullptr, nullptr);
  for (int i = 0; i < STANDIN_FUNCTIONS; ++i) {
    EXPECT_EQ(standin_calls(static_cast<standin_function_t>(i)), 1) << "function " << i;
  }
  freeData(text);
  standin_reset_logging();
  standin_set_status_sink(nullptr, nullptr);
}

} // namespace
} // namespace standin::test
