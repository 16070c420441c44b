// The text of a notification's "id", kept while the notification is converted: whatever becomes of
// it, its report can name the id. Takes no memory of the host's, and none at all for a usual id.
#ifndef VLT_CODEC_ID_FOR_REPORT_HPP
#define VLT_CODEC_ID_FOR_REPORT_HPP

#include <cstddef>
#include <cstring>
#include <memory>

#include "codec/vocabulary.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

// The text of the "id" of `payload`, or null unless there is one of a string kind.
[[nodiscard]] inline const char* idOf(const map_t& payload) {
  const data_t* const id = payload.find_value(DATA_T_id);
  return id != nullptr && id->is_string() ? text_or_empty(id->get<const char*>()) : nullptr;
}

class IdForReport {
 public:
  // Throws std::bad_alloc for a long id.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the usual text is there or unused
  explicit IdForReport(const map_t& payload) {
    const char* const id = idOf(payload);
    if (id == nullptr) return;
    const std::size_t size = std::strlen(id) + 1;
    if (size > sizeof usual_) long_ = std::make_unique<char[]>(size);
    text_ = long_ ? long_.get() : usual_;
    std::memcpy(text_, id, size);
  }
  IdForReport(const IdForReport&) = delete;
  IdForReport& operator=(const IdForReport&) = delete;
  ~IdForReport() = default;

  // Null when the notification has no "id" that is a string.
  [[nodiscard]] const char* text() const noexcept { return text_; }

 private:
  static constexpr std::size_t USUAL_SIZE = 64; // ids of the platform are shorter

  char* text_ = nullptr;
  std::unique_ptr<char[]> long_;
  char usual_[USUAL_SIZE];
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
