// Holds a run to a golden file: the n-th record to its n-th line, remarks about builds left out.
#ifndef VLT_TOOLS_REPLAY_COMPARING_EXPECTATION_HPP
#define VLT_TOOLS_REPLAY_COMPARING_EXPECTATION_HPP

#include <cstdint>
#include <fstream>
#include <ostream>
#include <string>

#include "tools/record/record.hpp"
#include "tools/replay/comparing/comparer.hpp"

namespace com::velanto::connectivity::tools {

class Expectation final : public Consumer {
 public:
  // Throws ReplayError with EXIT_IO when there is no such file. `diagnostics` must outlive this.
  Expectation(const std::string& path, std::ostream& diagnostics);

  void take(const record_t& record) override;
  void takeLog(std::span<const log_line_t> lines) override;

  // The run is over: reports the rest of the file as missing.
  exit_status_t finish() override;

  // It shows the differences; whoever listens gets them, too.
  [[nodiscard]] Comparer& comparer() noexcept { return comparer_; }

 private:
  [[nodiscard]] side_t nextExpected();

  std::string path_;
  std::ifstream file_;
  std::uint64_t line_number_ = 0;
  Comparer comparer_;
};

} // namespace com::velanto::connectivity::tools

#endif
