#include "tools/replay/summary/summary.hpp"

#include "tools/record/drop_reason.hpp"

namespace com::velanto::connectivity::tools {

void Summary::take(const record_t& record) {
  Tally::take(record);
  if (record.outcome != Outcome::DROPPED) return;
  drop_reason_t reason = dropReasonOf(record.log);
  addReason({reason.code, std::move(reason.key), 1, record.number, record.place()});
}

void Summary::addReason(counted_reason_t reason) {
  const auto [known, is_new] = reasons_.try_emplace({reason.code, reason.key}, reason);
  if (!is_new) known->second.count += reason.count;
}

void Summary::takeBatch(std::size_t, std::chrono::nanoseconds time) { batches_.add(time); }

} // namespace com::velanto::connectivity::tools
