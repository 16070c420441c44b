// Tells a file of another form, such as a binary one, from a file with a few malformed lines. Such a
// file would give one line on standard error for each of its own.
#ifndef VLT_TOOLS_REPLAY_INPUT_FORM_CHECK_HPP
#define VLT_TOOLS_REPLAY_INPUT_FORM_CHECK_HPP

#include <cstddef>
#include <string>

#include "tools/options/exit_status.hpp"
#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

class WrongForm : public ReplayError {
 public:
  using ReplayError::ReplayError;
};

class FormCheck {
 public:
  static constexpr std::size_t MOST = 20; // malformed lines before the first message of a file

  // To be called with each record in the order of the input. Throws WrongForm "FILE: reason" with
  // EXIT_IO at the last malformed line allowed.
  void take(const record_t& record) {
    if (file_ != record.file) left_ = MOST;
    file_ = record.file;
    if (left_ == 0) return;
    const bool is_malformed = record.outcome == Outcome::MALFORMED;
    left_ = is_malformed ? left_ - 1 : 0;
    if (!is_malformed || left_ > 0) return;
    throw WrongForm(EXIT_IO, *file_ + ": the first " + std::to_string(MOST) +
                                 " lines are malformed; a line of input is one JSON object");
  }

 private:
  const std::string* file_ = nullptr; // of the last record
  std::size_t left_ = 0;              // malformed lines allowed; 0: the form is right
};

} // namespace com::velanto::connectivity::tools

#endif
