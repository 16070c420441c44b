// A host that still needs its codec after the library's destructors have run. The first argument
// chooses the need:
//
//   worker      A thread is in the middle of a batch when main returns.
//   destructor  The destructor of a global object sends a batch and destroys the codec.
//
// Exit status 0, or 1 after a line on standard error that names the check that failed.
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <future>
#include <iostream>
#include <string>
#include <thread>

#include "tests/support/plugin_library.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {
namespace {

void require(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "ending_host: not so: " << what << '\n';
  _exit(EXIT_FAILURE); // the process has begun to end already
}

// A codec in a library that stays loaded. Only destroy() ends the codec.
class Chain {
 public:
  explicit Chain(const char* path) : library_(*new PluginLibrary(path)), codec_(create()) {
    require(codec_ != nullptr, "the codec is created");
    library_.setNextTowardsHost(codec_, &host_, Received::take);
  }
  [[nodiscard]] void* create() const {
    const data_t settings = mapOf("tenantId", text("t1"));
    return library_.create("codec", "chain", settings.underlying(), nullptr, nullptr);
  }
  // A notification of an unknown kind, then a good one.
  void send() {
    Message batch[2] = {
        notification("tenant/subscription/inventory/1", mapOf("id", text("1"))),
        notification("tenant/subscription/events/1",
                     mapOf("id", text("2"), "source", mapOf("id", text("7")), "text", text("t"),
                           "time", text("2023-04-05T06:07:08.000Z"), "type", text("o6a_Test")))};
    require(library_.sendBatchTowardsHost(codec_, batch, batch + 2) == 0, "the batch succeeds");
    require(host_.messages.size() == 1, "one message is dropped, one is kept");
    require(has(host_.messages[0].getMetadataMap(), "vlt.type"), "the kept one is an event");
    host_.messages.clear();
  }
  void destroy() { library_.destroy(codec_); }

 private:
  const PluginLibrary& library_;
  Received host_;
  void* codec_;
};

Chain* chain = nullptr;

// The worker waits in its batch, in the log call for the first message.
struct worker_t {
  std::promise<void> in_batch;
  std::promise<void> ending;
  std::thread thread;
};
worker_t* worker = nullptr;

void waitForTheEnd(void*, const char*, vlt_log_level_t, const char*) {
  worker->in_batch.set_value();
  worker->ending.get_future().wait();
}

void startWorker() {
  standin_set_log_sink(waitForTheEnd, nullptr);
  worker = new worker_t;
  worker->thread = std::thread([] { chain->send(); });
  worker->in_batch.get_future().wait();
}

int creations_refused = 0;

void countRefusal(void*, const char*, vlt_log_level_t level, const char*) {
  if (level == 2) ++creations_refused;
}

// Its constructor runs before the library is loaded, so its destructor runs after the library's.
class LastUser {
 public:
  LastUser() = default;
  LastUser(const LastUser&) = delete;
  LastUser& operator=(const LastUser&) = delete;
  ~LastUser() {
    if (worker != nullptr) {
      worker->ending.set_value();
      worker->thread.join();
    } else if (chain != nullptr) {
      standin_set_log_sink(countRefusal, nullptr);
      chain->send();
      chain->destroy();
      require(standin_live_blocks_total() == 0, "the last codec frees the constants");
      require(chain->create() == nullptr && creations_refused == 1, "then, creation is refused");
    }
  }
};
const LastUser LAST_USER;

} // namespace
} // namespace com::velanto::connectivity::test

int main(int argc, char** argv) {
  if (argc != 3) return EXIT_FAILURE;
  using namespace com::velanto::connectivity::test;
  try {
    chain = new Chain(argv[2]);
    if (std::string(argv[1]) == "worker") startWorker();
    return EXIT_SUCCESS;
  } catch (const std::exception& e) {
    std::cerr << "ending_host: " << e.what() << '\n';
    return EXIT_FAILURE;
  }
}
