// The first thing that is wrong with a notification. The steps of a conversion note here what they
// find and do nothing more from then on, so that the conversion reads as if nothing ever went wrong
// and gives up in one place. Nothing is thrown for them: unwinding the frames in between would cost
// more than a whole conversion, and notifications may all be bad.
#ifndef VLT_CODEC_FAULT_HPP
#define VLT_CODEC_FAULT_HPP

#include <boost/optional.hpp>
#include <stdexcept>

namespace com::velanto::connectivity::plugins::pulsar {

class Fault {
 public:
  // Whether there is one.
  explicit operator bool() const noexcept { return error_.has_value(); }

  // Its text, for the report. There must be one.
  [[nodiscard]] const char* what() const noexcept { return error_->what(); }

  // Notes `error`, unless there is a fault already.
  void note(const std::runtime_error& error) noexcept {
    if (!error_) error_ = error;
  }

  // `result`, which was made in steps that note their faults here. Throws the std::runtime_error
  // that was noted; there is no fault then any more.
  template <class Result>
  [[nodiscard]] Result orThrow(Result result) {
    if (error_) raise();
    return result;
  }

 private:
  [[noreturn]] void raise() {
    const std::runtime_error error = *error_;
    error_ = boost::none;
    throw std::runtime_error(error);
  }

  boost::optional<std::runtime_error> error_;
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
