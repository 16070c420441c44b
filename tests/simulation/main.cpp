// ostrovia-lives: random lives of the whole system, each made from a seed. tests/simulation/laws.hpp has
// the laws that they keep.
//
//   ostrovia-lives CODEC RECORDER --seeds FROM-TO [TENANT]   lives until one breaks a law
//   ostrovia-lives CODEC RECORDER --seed N [TENANT]          one, with its steps
//
// A failing life is printed and shrunk. Exit status 0, 1 when a law is broken or a life crashes, 2 when
// it is not called like that.
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <array>
#include <cinttypes>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/plugin/samples.hpp"
#include "tests/simulation/world.hpp"
#ifdef VLT_SANITIZED
#include <sanitizer/common_interface_defs.h>
#endif

namespace com::velanto::connectivity::simulation {
namespace {

struct seeds_t {
  std::uint64_t from;
  std::uint64_t to;
};

// `text` is FROM-TO or N.
seeds_t readSeeds(const std::string& text) {
  char* end = nullptr;
  const std::uint64_t from = std::strtoull(text.c_str(), &end, 10);
  return {from, *end == '-' ? std::strtoull(end + 1, nullptr, 10) : from};
}

std::uint64_t seed_now = 0; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

void printCrash() { dprintf(STDOUT_FILENO, "seed %" PRIu64 ": a crash\n", seed_now); }

void watchForCrashes() {
#ifdef VLT_SANITIZED
  __sanitizer_set_death_callback(printCrash);
  constexpr std::array SIGNALS = {SIGABRT}; // the sanitizers take the others
#else
  constexpr std::array SIGNALS = {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV};
#endif
  for (const int number : SIGNALS) {
    std::signal(number, [](int) {
      printCrash();
      std::_Exit(1);
    });
  }
}

// A recorder's buffers stay in the heap when it goes: the kernel would have to clear their pages for
// the next one.
void keepMemory() {
  constexpr int MOST = 1 << 30;
  mallopt(M_MMAP_THRESHOLD, MOST);
  mallopt(M_TRIM_THRESHOLD, MOST);
  mallopt(M_ARENA_MAX, 1);
}

// Reading a value as the wrong kind writes a line there.
void silenceStandardError() {
  const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nothing < 0 || dup2(nothing, STDERR_FILENO) < 0) throw std::runtime_error("no /dev/null");
  close(nothing);
}

void printFailure(World& world, const life_t& life, const World::end_t& end) {
  std::cout << "seed " << seed_now << ", step " << end.step << " of " << life.size() << ": "
            << end.breach->law << ": " << end.breach->detail << '\n'
            << std::flush;
  const life_t least = shrunk(life, [&](const life_t& shorter) {
    const auto breach = world.live(shorter).breach;
    return breach && breach->law == end.breach->law;
  });
  const auto again = world.live(least).breach;
  std::cout << "shrunk to " << least.size() << " steps: " << (again ? again->detail : "not again")
            << '\n'
            << describe(least);
}

int run(World& world, const seeds_t& seeds, bool prints_steps) {
  for (seed_now = seeds.from; seed_now <= seeds.to; ++seed_now) {
    const life_t life = makeLife(seed_now);
    if (prints_steps) std::cout << describe(life) << std::flush;
    const World::end_t end = world.live(life);
    if (!end.breach) continue;
    printFailure(world, life, end);
    return 1;
  }
  std::cout << "seeds " << seeds.from << " to " << seeds.to << ": " << describe(world.figures())
            << '\n';
  return 0;
}

} // namespace
} // namespace com::velanto::connectivity::simulation

int main(int argc, char** argv) {
  namespace simulation = com::velanto::connectivity::simulation;
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const bool is_one = arguments.size() > 2 && arguments[2] == "--seed";
  const bool is_usual = arguments.size() == 4 || arguments.size() == 5;
  if (!is_usual || (!is_one && arguments[2] != "--seeds")) {
    std::cout << "usage: ostrovia-lives CODEC RECORDER (--seeds FROM-TO | --seed N) [TENANT]\n";
    return 2;
  }
  try {
    simulation::keepMemory();
    static_cast<void>(com::velanto::connectivity::fuzz::samples());
    simulation::World world(arguments[0], arguments[1],
                            arguments.size() == 5 ? arguments[4] : "t4100");
    simulation::silenceStandardError();
    simulation::watchForCrashes();
    return simulation::run(world, simulation::readSeeds(arguments[3]), is_one);
  } catch (const std::exception& e) {
    std::cout << "ostrovia-lives: " << e.what() << '\n'; // standard error may lead nowhere
    return 2;
  }
}
