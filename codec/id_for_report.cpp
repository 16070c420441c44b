#include "codec/id_for_report.hpp"

#include <cstring>

#include "codec/constants.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the short text is there or unused
IdForReport::IdForReport(const data_t* id, Message& message)
    : message_(message), has_id_(id != nullptr) {
  if (!has_id_) return;
  const auto* const text = id->get<const char*>();
  const std::size_t size = std::strlen(text_or_empty(text)) + 1;
  if (text == nullptr || size > sizeof short_text_) {
    other_text_ = *id;
  } else {
    std::memcpy(short_text_, text, size);
  }
}

void IdForReport::leaveOnlyId() noexcept {
  try {
    data_t id = other_text_.empty() ? data_t(short_text_) : std::move(other_text_);
    map_t only_id;
    only_id.add(DATA_T_id.with(std::move(id)));
    message_.getPayload() = data_t(std::move(only_id));
  } catch (...) { // NOLINT(bugprone-empty-catch): no memory for it; the report goes without
  }
}

} // namespace com::velanto::connectivity::plugins::pulsar
