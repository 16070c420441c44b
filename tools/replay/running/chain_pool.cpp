#include "tools/replay/running/chain_pool.hpp"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <exception>
#include <future>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "tools/options/exit_status.hpp"
#include "tools/replay/input/interruption.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t BLOCK = 256; // lines, if the batches are not larger
constexpr std::size_t AHEAD = 4;   // blocks that each chain may have

// A thread that does its tasks in order.
class TaskThread {
 public:
  TaskThread() : thread_([this] { serve(); }) {}
  TaskThread(const TaskThread&) = delete;
  TaskThread& operator=(const TaskThread&) = delete;
  ~TaskThread() {
    {
      const std::lock_guard guard(lock_);
      ended_ = true;
    }
    changed_.notify_one();
    thread_.join();
  }

  // The result is ready after `task`, and has its exception if it threw.
  std::future<void> give(std::packaged_task<void()> task) {
    std::future<void> result = task.get_future();
    const std::lock_guard guard(lock_);
    tasks_.push_back(std::move(task));
    changed_.notify_one();
    return result;
  }

 private:
  void serve() {
    std::unique_lock guard(lock_);
    while (true) {
      changed_.wait(guard, [this] { return ended_ || !tasks_.empty(); });
      if (tasks_.empty()) return;
      std::packaged_task<void()> task = std::move(tasks_.front());
      tasks_.pop_front();
      guard.unlock();
      task();
      guard.lock();
    }
  }

  std::mutex lock_;
  std::condition_variable changed_;
  std::deque<std::packaged_task<void()>> tasks_;
  bool ended_ = false;
  std::thread thread_;
};

std::vector<TaskThread> startThreads(std::size_t count) {
  try {
    return std::vector<TaskThread>(count);
  } catch (const std::system_error& error) {
    throw ReplayError(EXIT_IO, "the system does not start " + std::to_string(count) +
                                   " threads: " + error.code().message());
  }
}

} // namespace

ChainPool::ChainPool(const PluginLibrary& library, const data_t& configuration, Direction direction,
                     const pool_options_t& options, std::vector<log_line_t>& log)
    : options_(options) {
  for (std::size_t i = 0; i < options.chains; ++i) {
    workers_.push_back(
        std::make_unique<Worker>(library, configuration, direction, options.batching, log));
  }
}

std::exception_ptr ChainPool::run(LineReader& reader, const pool_listener_t& listener) {
  return workers_.size() == 1 ? runAlone(reader, listener) : runTogether(reader, listener);
}

bool ChainPool::readOne(LineReader& reader, record_t& record) {
  if (!ahead_) return reader.next(record);
  record = *std::exchange(ahead_, std::nullopt);
  return true;
}

// Fills `block` with the next lines: none at the end.
void ChainPool::read(LineReader& reader, block_t& block) {
  // As many whole batches as a block holds, but at least one.
  const std::size_t size = options_.batching.size;
  const std::size_t lines = std::max(BLOCK / size, std::size_t{1}) * size;
  const bool prompt = options_.prompt || (workers_.size() == 1 && size == 1);
  block.failure = nullptr;
  block.count = 0;
  try {
    while (!isInterrupted()) {
      // Messages that come one by one are not kept waiting for each other.
      const bool full = block.count >= lines || (prompt && block.count > 0 && reader.mayWait());
      if (block.count == block.records.size()) block.records.emplace_back();
      record_t& record = block.records[block.count];
      const record_t* const before = block.count == 0 ? nullptr : &block.records[block.count - 1];
      const bool goes_on = full && options_.batching.as_recorded && !isLastOfBatch(*before);
      if (full && !goes_on) break;
      if (!readOne(reader, record)) {
        const bool whole =
            before == nullptr || !options_.batching.as_recorded || isLastOfBatch(*before);
        if (whole || !reader.hasMoreLater()) break;
        LineReader::wait();
        continue;
      }
      if (goes_on && !sameBatch(*before, record)) {
        ahead_ = std::move(record);
        break;
      }
      ++block.count;
    }
  } catch (const ReplayError&) {
    block.failure = std::current_exception();
  }
}

std::exception_ptr ChainPool::runAlone(LineReader& reader, const pool_listener_t& listener) {
  Worker& worker = *workers_.front();
  block_t block;
  while (!listener.finished()) {
    read(reader, block);
    worker.process(std::span(block.records).first(block.count), [&listener](record_t& record) {
      listener.take(record);
      record.outputs.clear(); // the next message gets their blocks, which the processor still has
    });
    listener.report(worker.incidents());
    if (block.failure) return block.failure;
    if (block.count == 0 && !reader.hasMoreLater()) break;
    if (reader.mayWait() || reader.hasMoreLater()) listener.pause();
    if (reader.hasMoreLater()) LineReader::wait();
  }
  return {};
}

// A ring of blocks: the caller fills them and publishes each when its chain has served it.
std::exception_ptr ChainPool::runTogether(LineReader& reader, const pool_listener_t& listener) {
  std::vector<block_t> blocks(options_.undisturbed ? 1 : workers_.size() * AHEAD);
  std::vector<std::future<void>> served(blocks.size());
  std::vector<TaskThread> threads =
      startThreads(workers_.size()); // after the blocks: ends before them
  std::size_t filled = 0;
  bool more = true;
  for (std::size_t published = 0; !listener.finished(); ++published) {
    for (; more && filled - published < blocks.size(); ++filled) {
      block_t& block = blocks[filled % blocks.size()];
      read(reader, block);
      more = block.count > 0 && !block.failure;
      Worker& worker = *workers_[filled % workers_.size()];
      served[filled % blocks.size()] = threads[filled % threads.size()].give(
          std::packaged_task<void()>([&block, &worker] { serve(block, worker); }));
    }
    if (published == filled) break;
    block_t& block = blocks[published % blocks.size()];
    served[published % blocks.size()].get();
    for (record_t& record : std::span(block.records).first(block.count)) listener.take(record);
    listener.report(block.incidents);
    if (block.failure) return block.failure;
  }
  return {};
}

void ChainPool::serve(block_t& block, Worker& worker) {
  worker.process(std::span(block.records).first(block.count), [](record_t&) {});
  block.incidents = std::exchange(worker.incidents(), {});
}

std::vector<call_result_t> ChainPool::shutdown() {
  std::vector<call_result_t> results;
  for (const std::unique_ptr<Worker>& worker : workers_) {
    results.push_back(std::move(worker->shutdown()));
  }
  return results;
}

} // namespace com::velanto::connectivity::tools
