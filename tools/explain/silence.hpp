// While it exists, standard error leads nowhere. A plug-in that writes there past the log would
// otherwise tell of runs that nobody has asked for. Standard error belongs to the whole process, so
// no other code may write there meanwhile.
#ifndef VLT_TOOLS_EXPLAIN_SILENCE_HPP
#define VLT_TOOLS_EXPLAIN_SILENCE_HPP

namespace com::velanto::connectivity::tools {

class Silence {
 public:
  // When the system refuses, it has no effect.
  Silence() noexcept;
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence();

 private:
  int standard_error_; // a duplicate of the real one; negative: there is none
};

} // namespace com::velanto::connectivity::tools

#endif
