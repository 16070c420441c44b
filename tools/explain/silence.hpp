// While it exists, what is written to standard error goes nowhere. A plug-in that writes there past
// the log would otherwise tell of runs that nobody has asked it about. Standard error is the whole
// process's: nobody else may have something to say meanwhile.
#ifndef VLT_TOOLS_EXPLAIN_SILENCE_HPP
#define VLT_TOOLS_EXPLAIN_SILENCE_HPP

namespace com::velanto::connectivity::tools {

class Silence {
 public:
  // Where the system refuses, nothing is silenced.
  Silence() noexcept;
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence();

 private:
  int standard_error_; // a duplicate of the real one; negative: there is none
};

} // namespace com::velanto::connectivity::tools

#endif
