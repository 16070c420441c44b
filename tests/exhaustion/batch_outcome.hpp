// The outcome of a batch of a sample and its two neighbours. It must keep these rules when memory
// ran out on the way:
//
//   kept      the messages that arrive with memory, in order, without the one at hand
//   dropped   untouched, or nothing but the id, or nothing
//   reports   one for each dropped message, with its own reason or that there was no memory; the
//             plug-in's own memory may be missing for the report itself
//   traces    as with memory, without those of dropped messages
#ifndef VLT_TESTS_EXHAUSTION_BATCH_OUTCOME_HPP
#define VLT_TESTS_EXHAUSTION_BATCH_OUTCOME_HPP

#include <cstddef>
#include <string>
#include <vector>

#include "tests/exhaustion/exhaustion.hpp"
#include "tests/support/host_fixture.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::test {

struct batch_outcome_t {
  std::vector<Message> batch; // as the codec left it: the kept messages in front
  std::size_t kept = 0;
  int result = -1;
  int calls = 0; // of the link
  std::vector<log_line_t> reports;
  std::vector<log_line_t> traces;
};

// The same messages arrived, with the same log lines.
[[nodiscard]] bool isSame(const batch_outcome_t& left, const batch_outcome_t& right);

// Checks the rules for `outcome`. `sent` is the batch before, `reference` its outcome with memory:
// the neighbours arrive. `label` begins each line of the codec.
void expectLossReported(const exhaustion_t& how, const std::vector<Message>& sent,
                        const batch_outcome_t& reference, const batch_outcome_t& outcome,
                        const std::string& label);

} // namespace com::velanto::connectivity::test

#endif
