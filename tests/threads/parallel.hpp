// Work on several threads that begins on all of them at once, and the batches that they send.
// Standard error is not captured while it runs: ThreadSanitizer reports there.
#ifndef VLT_TESTS_THREADS_PARALLEL_HPP
#define VLT_TESTS_THREADS_PARALLEL_HPP

#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/plugin_library.hpp"
#include "tests/support/samples.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

inline constexpr int THREADS = 4;

// Calls `work` with 0, 1, …, each on a thread of its own, and waits for all of them.
template <class Work>
void inParallel(const Work& work) {
  std::latch all_there(THREADS);
  std::vector<std::thread> threads;
  threads.reserve(THREADS);
  for (int i = 0; i < THREADS; ++i) {
    threads.emplace_back([&work, &all_there, i] {
      all_there.arrive_and_wait();
      work(i);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

// A base in front of the fixture: their blocks are there before that counts, and after.
class LibraryAndSamples {
 protected:
  PluginLibrary library_{VLT_PLUGIN_PATH};
  const std::vector<sample_t> samples_ = readSamples();
};

// A batch of all samples.
inline std::vector<Message> batchOf(const std::vector<sample_t>& samples) {
  std::vector<Message> batch;
  batch.reserve(samples.size());
  for (const sample_t& sample : samples) batch.push_back(copyOf(sample.message));
  return batch;
}

// A link that leaves the messages where they are and tells where the kept ones end. Its handle is
// the pointer that it sets.
inline void noteEnd(void* handle, vlt_underlying_message_t*, vlt_underlying_message_t* end) {
  *static_cast<Message**>(handle) = reinterpret_cast<Message*>(end);
}

// How the first `count` messages read.
inline std::vector<std::string> textsOf(const std::vector<Message>& batch, std::size_t count) {
  std::vector<std::string> texts;
  texts.reserve(count);
  for (std::size_t i = 0; i < count; ++i) texts.push_back(to_string(batch[i], false));
  return texts;
}

} // namespace com::velanto::connectivity::test

#endif
