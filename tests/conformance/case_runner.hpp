// Plays one case through the built plug-in library, as a host would: create, links, start, the
// batch, shutdown, destroy. Everything that comes of it is compared, and so is what must not.
#ifndef VLT_TESTS_CONFORMANCE_CASE_RUNNER_HPP
#define VLT_TESTS_CONFORMANCE_CASE_RUNNER_HPP

#include <string>

#include "tests/conformance/case.hpp"
#include "tests/support/plugin_library.hpp"

namespace com::velanto::connectivity::test {

// Where a case stands: the file as it can be opened, and the line, counted from 1.
struct place_t {
  std::string file;
  int line;
};

class CaseRunner : public HostFixture {
 public:
  // `library` and `line`, the parsed text of the case, outlive the run.
  CaseRunner(const PluginLibrary& library, const data_t& line, place_t place)
      : library_(library), line_(line), place_(std::move(place)) {}

  void TestBody() override;

 private:
  void play(case_t& played);
  void playBatch(void* plugin, case_t& played);

  const PluginLibrary& library_;
  const data_t& line_;
  place_t place_;
};

} // namespace com::velanto::connectivity::test

#endif
