// The first thing that is wrong with a notification. Nothing is thrown for a fault: unwinding would
// cost more than a whole conversion, and notifications may all be bad.
//
// Each step that can note a fault looks for an earlier one itself. With one it does nothing, and its
// result means nothing. So only a conversion looks as well: once, before it makes its builder.
#ifndef VLT_CODEC_FAULT_HPP
#define VLT_CODEC_FAULT_HPP

#include <boost/optional.hpp>
#include <stdexcept>

namespace com::velanto::connectivity::plugins::pulsar {

class Fault {
 public:
  // Whether there is one.
  explicit operator bool() const noexcept { return error_.has_value(); }

  // Its message, for the report. There must be one.
  [[nodiscard]] const char* what() const noexcept { return error_->what(); }

  // Notes `error`, unless there is a fault already.
  void note(const std::runtime_error& error) noexcept {
    if (!error_) error_ = error;
  }

 private:
  boost::optional<std::runtime_error> error_;
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
