// Puts a notification's "id" aside while it is converted: a message whose conversion fails is left
// with that and nothing else, for the report to name. The text is kept here, where it costs no call
// of the host, and becomes a map again only when it is needed.
#ifndef VLT_CODEC_ID_FOR_REPORT_HPP
#define VLT_CODEC_ID_FOR_REPORT_HPP

#include <cstddef>

#include "value/message.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

class IdForReport {
 public:
  // `id` is a string, or null for none. At the end of its life the object leaves a map with only
  // the id in `message`, which must outlive it, unless the conversion succeeded or there is no
  // memory for the map. Throws std::bad_alloc for a long text.
  IdForReport(const data_t* id, Message& message);
  IdForReport(const IdForReport&) = delete;
  IdForReport& operator=(const IdForReport&) = delete;
  ~IdForReport() {
    if (has_id_ && !converted_) leaveOnlyId();
  }

  // There is nothing to report.
  void converted() noexcept { converted_ = true; }

 private:
  void leaveOnlyId() noexcept;

  static constexpr std::size_t USUAL_SIZE = 64; // ids of the platform are shorter

  Message& message_;
  bool has_id_;
  bool converted_ = false;
  data_t other_text_; // a long one or a null one; empty: the short one counts
  char short_text_[USUAL_SIZE];
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
