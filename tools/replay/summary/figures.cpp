#include "tools/replay/summary/figures.hpp"

namespace com::velanto::connectivity::tools {

void Figures::take(const record_t& record) {
  ++read_;
  out_ += record.outputs.size();
  if (record.recorded && record.recorded->direction == recorded_t::Direction::TRANSPORT) {
    out_to_transport_ += record.outputs.size();
  }
  ++counts_[static_cast<std::size_t>(record.outcome)];
}

std::string Figures::brokenLaw() const {
  const std::uint64_t converted = count(Outcome::CONVERTED);
  // All messages that came out beyond the converted ones have passed, expected or not.
  const std::uint64_t passed = out_ - converted;
  const std::uint64_t dropped = count(Outcome::DROPPED);
  const std::uint64_t malformed = count(Outcome::MALFORMED);
  if (read_ == converted + passed + dropped + malformed) return "";
  const auto number = [](std::uint64_t value) { return std::to_string(value); };
  return "the plug-in breaks the law: read " + number(read_) + " is not converted " +
         number(converted) + " + passed " + number(passed) + " + dropped " + number(dropped) +
         " + malformed " + number(malformed);
}

} // namespace com::velanto::connectivity::tools
