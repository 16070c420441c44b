// Counts the fates of the lines and holds the plug-in to the law of replaying: every line read was
// converted, passed, dropped or malformed, and nothing else came out.
#ifndef VLT_TOOLS_REPLAY_SUMMARY_FIGURES_HPP
#define VLT_TOOLS_REPLAY_SUMMARY_FIGURES_HPP

#include <array>
#include <cstdint>
#include <string>

#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

class Figures final : public Consumer {
 public:
  void take(const record_t& record) override;
  // The same for messages that came out without one going in.
  void takeUnasked(std::size_t messages) noexcept { out_ += messages; }

  [[nodiscard]] std::uint64_t read() const noexcept { return read_; } // lines that are not blank
  [[nodiscard]] std::uint64_t out() const noexcept { return out_; }   // messages that came out
  // Of these, messages recorded on their way to the transport.
  [[nodiscard]] std::uint64_t outToTransport() const noexcept { return out_to_transport_; }
  [[nodiscard]] std::uint64_t count(Outcome outcome) const noexcept {
    return counts_[static_cast<std::size_t>(outcome)];
  }

  // Nothing, or the law with the figures that break it, in one line.
  [[nodiscard]] std::string brokenLaw() const;

 private:
  std::uint64_t read_ = 0;
  std::uint64_t out_ = 0;
  std::uint64_t out_to_transport_ = 0;
  std::array<std::uint64_t, OUTCOMES> counts_{};
};

} // namespace com::velanto::connectivity::tools

#endif
