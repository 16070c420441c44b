// The frame of a program that tries every case of some spaces:
//
//   PROGRAM [STEP [FIRST]]   tries each STEP-th case from case FIRST on; without arguments: all cases
//
// So processes with one STEP share the work. Prints a line for each space. Exit status: 0; 1 after the
// first case that fails; 2 for other arguments.
#ifndef VLT_TESTS_ENUMERATION_ENUMERATION_HPP
#define VLT_TESTS_ENUMERATION_ENUMERATION_HPP

#include <cstdint>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>

namespace com::velanto::connectivity::enumeration {

// The cases of one process, in spaces that follow one another.
class Share {
 public:
  Share(std::uint64_t step, std::uint64_t first) : step_(step), ahead_(first) {}

  // Whether the next case is one of the process.
  [[nodiscard]] bool hasNext() {
    return eachOf(1, [](std::uint64_t) {}) == 1;
  }

  // Calls `use` with the number of each case of the process among the next `count` cases. Returns how
  // many these are.
  template <class Use>
  std::uint64_t eachOf(std::uint64_t count, const Use& use) {
    std::uint64_t used = 0;
    for (; ahead_ < count; ahead_ += step_, ++used) use(ahead_);
    ahead_ -= count;
    return used;
  }

 private:
  std::uint64_t step_;
  std::uint64_t ahead_; // how many cases of others come first
};

// The body of main. `run` prints the lines, and throws std::exception for a case that fails.
template <class Run>
int enumerate(int argc, char** argv, const Run& run) {
  try {
    const std::uint64_t step = argc > 1 ? std::stoull(argv[1]) : 1;
    const std::uint64_t first = argc > 2 ? std::stoull(argv[2]) : 0;
    if (argc > 3 || first >= step) throw std::out_of_range("FIRST");
    Share share(step, first);
    try {
      run(share);
      return 0;
    } catch (const std::exception& e) {
      std::cout << "failed: " << e.what() << '\n';
      return 1;
    }
  } catch (const std::exception&) {
    std::cout << "usage: " << argv[0] << " [STEP [FIRST]]\n";
    return 2;
  }
}

} // namespace com::velanto::connectivity::enumeration

#endif
