// Writes a copy of the input to hand to others, with stand-ins for the fields that --redact names,
// and proves that it serves the same purpose: each message of the copy goes through a chain of its
// own and must have the outcome of the original, and a dropped one the same reason and key. The
// first that has not ends the run, and there is no copy.
//
// It leaves out malformed lines, since nobody can tell which of their texts to hide, and the remark
// of an earlier run, which quotes the message.
#ifndef VLT_TOOLS_REPLAY_REDACTING_REDACTION_HPP
#define VLT_TOOLS_REPLAY_REDACTING_REDACTION_HPP

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tools/options/replay_options.hpp"
#include "tools/record/output_file.hpp"
#include "tools/record/record.hpp"
#include "tools/replay/redacting/line_redactor.hpp"
#include "tools/replay/running/worker.hpp"

namespace com::velanto::connectivity::tools {

class Redaction final : public Consumer {
 public:
  // Needs `redact` and `redacted` of the options. `library` and `diagnostics` must outlive this.
  // Throws ReplayError, PluginError.
  Redaction(const ReplayOptions& options, const PluginLibrary& library, const data_t& configuration,
            Direction direction, std::ostream& diagnostics);

  // Throws ReplayError with EXIT_DIFFERENT "PLACE: …" where the results differ.
  void take(const record_t& record) override;
  void takeRemarks(std::string_view lines) override;
  // Throws ReplayError with EXIT_USAGE when the messages have none of the fields.
  exit_status_t finish() override;
  void commit() override { file_.commit(); }

 private:
  // All that holds blocks of the host.
  struct chain_t {
    chain_t(const PluginLibrary& library, const data_t& configuration, Direction direction,
            std::vector<log_line_t>& log)
        : worker(library, configuration, direction, batching_t{1, true}, log) {}

    Worker worker;
    record_t record;
  };

  void compare(const record_t& original, const record_t& copy) const;

  std::ostream& diagnostics_;
  redacted_fields_t fields_;
  Pseudonyms pseudonyms_;
  LineRedactor redactor_;
  OutputFile file_;
  std::vector<log_line_t> log_; // of the chain, without a message
  std::optional<chain_t> chain_;
  std::uint64_t left_out_ = 0;
  bool has_message_ = false;
};

} // namespace com::velanto::connectivity::tools

#endif
