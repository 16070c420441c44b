// Where a function of a library goes, read from what objdump makes of its instructions:
//
//   call   to another function, which comes back, or throws
//   jump   within the function; to another part of it, which the compiler has moved away; or to
//          another function instead of a call and a return
#ifndef VLT_TESTS_END_TO_END_MACHINE_CODE_HPP
#define VLT_TESTS_END_TO_END_MACHINE_CODE_HPP

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace com::velanto::connectivity::test {

class MachineCode {
 public:
  // Throws std::runtime_error when objdump cannot read the library at `path`.
  explicit MachineCode(const std::string& path);

  // The instructions in a range of addresses that call, or jump to where only the run time knows,
  // as objdump writes them.
  [[nodiscard]] std::vector<std::string> callsIn(std::uint64_t start, std::uint64_t size) const;

  // Where the jumps in a range lead that lead out of it.
  [[nodiscard]] std::vector<std::uint64_t> jumpsOutOf(std::uint64_t start,
                                                      std::uint64_t size) const;

 private:
  std::map<std::uint64_t, std::string> branches_; // by their addresses
};

} // namespace com::velanto::connectivity::test

#endif
