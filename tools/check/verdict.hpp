// The outcome of a check in a process of its own. It follows from the end of that process and from
// the records in a file that the process has left.
//
//   record    a letter and its fields, each ended by a NUL
//     F where expected actual  an expectation that did not hold
//     S reason                 cannot be checked here
//     E                        the check came to its end
//
//   judged in this order         ending
//   had to be stopped            hung
//   ended by a signal            crashed
//   ended without an E record    crashed: something in it ended the process
//   an S record                  skipped
//   an F record                  failed
//   otherwise                    ok
#ifndef VLT_TOOLS_CHECK_VERDICT_HPP
#define VLT_TOOLS_CHECK_VERDICT_HPP

#include <string>
#include <vector>

namespace com::velanto::connectivity::tools::check {

enum class Ending { OK, FAILED, CRASHED, HUNG, SKIPPED };

// "ok", "failed" and so on.
[[nodiscard]] const char* nameOf(Ending ending) noexcept;

struct mismatch_t {
  std::string where;
  std::string expected;
  std::string actual;
  bool operator==(const mismatch_t&) const = default;
};

// The end of a process.
struct process_end_t {
  bool stopped = false; // it exceeded its time and was killed
  int status = 0;       // as waitpid tells it
  std::string records;
  std::string printed; // on standard output and standard error
};

struct verdict_t {
  Ending ending = Ending::OK;
  std::string reason; // of a crash, a hang or a skipped check; otherwise empty
  std::vector<mismatch_t> mismatches;
  std::string printed; // only for checks that did not pass
};

// A record that breaks off in the middle counts as not written.
[[nodiscard]] verdict_t judge(const process_end_t& end);

} // namespace com::velanto::connectivity::tools::check

#endif
