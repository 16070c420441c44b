// Loading and unloading: a host does both for a new configuration, and they must cost it nothing.
#include <dlfcn.h>
#include <malloc.h>

#include <fstream>
#include <stdexcept>
#include <string>

#include "tools/check/blocks.hpp"
#include "tools/check/check_fixture.hpp"
#include "tools/check/counted_heap.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/host/plugin_library.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

void loadAndUnload(const Trial& trial) {
  void* const handle = openLibrary(trial.path());
  if (handle == nullptr) throw std::runtime_error(std::string("cannot load ") + dlerror());
  if (dlclose(handle) != 0) throw std::runtime_error(std::string("cannot unload ") + dlerror());
}

void loads(Trial& trial) { loadAndUnload(trial); }

void freesItsBlocks(Trial& trial) {
  const BlockBalance balance;
  loadAndUnload(trial);
  balance.expectBack(trial, "after unloading");
}

void leavesTheProcess(Trial& trial) {
  loadAndUnload(trial);
  trial.holds(openLibrary(trial.path(), RTLD_NOLOAD) == nullptr, "after unloading",
              "the library to be gone", "it is still loaded");
}

void isSilent(Trial& trial) {
  Log log(1000);
  loadAndUnload(trial);
  trial.equal("log", lines_t{}, log.take());
  trial.equal("standard output and error", "", trial.printed());
}

std::int64_t mappings() {
  std::ifstream maps("/proc/self/maps");
  std::int64_t count = 0;
  for (std::string line; std::getline(maps, line);) ++count;
  return count;
}

void thousandTimes(Trial& trial) {
  if (!countsHeap()) trial.skip("the sanitizer keeps records of every library that was loaded");
  loadAndUnload(trial); // the loader has by now all that it keeps for good
  const BlockBalance balance;
  const std::int64_t mapped = mappings();
  for (int i = 0; i < 1000; ++i) loadAndUnload(trial);
  balance.expectBack(trial, "after 1000 loads");
  // The heap may take a segment or two more meanwhile; a library that stays takes at least four.
  trial.holds(mappings() <= mapped + 20, "memory mappings after 1000 loads",
              "at most 20 more than " + std::to_string(mapped), std::to_string(mappings()));
}

void heapStaysLevelOverLoads(Trial& trial) {
  if (!countsHeap()) trial.skip("the sanitizer's heap does not count blocks in use");
  for (int i = 0; i < 20; ++i) loadAndUnload(trial);
  const std::size_t before = mallinfo2().uordblks;
  for (int i = 0; i < 200; ++i) loadAndUnload(trial);
  const std::size_t after = mallinfo2().uordblks;
  trial.holds(after < before + 1600, "heap in use after 200 loads",
              "about " + std::to_string(before) + " bytes", std::to_string(after) + " bytes");
}

void livesAgain(Trial& trial) {
  for (const char* const name : {"first", "second"}) {
    const BlockBalance balance;
    { CheckFixture fixture(trial); }
    balance.expectBack(trial, std::string("after the ") + name + " life");
  }
}

const check_t LOADING_CHECKS[] = {
    {"loading.loads", "the library is loaded with all its symbols bound, and unloaded",
     "Two libraries", loads},
    {"loading.frees-its-blocks", "unloading gives back every block of the host", "Two libraries",
     freesItsBlocks},
    {"loading.leaves-the-process", "an unloaded library is no longer in the process", ADVISED_ONLY,
     leavesTheProcess},
    {"loading.is-silent", "loading and unloading log and print nothing", "Two libraries", isSilent},
    {"loading.thousand-times",
     "a thousand loads and unloads leave blocks and mappings as they were", "Two libraries",
     thousandTimes},
    {"loading.heap-stays-level", "loading and unloading leak nothing of the C library's heap",
     "Two libraries", heapStaysLevelOverLoads},
    {"loading.lives-again", "a codec of a library loaded again works and leaves nothing",
     "Two libraries", livesAgain},
};

} // namespace

suite_t loadingChecks() { return LOADING_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
