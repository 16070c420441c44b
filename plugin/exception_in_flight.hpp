// Tells a hook that runs inside a catch clause what was caught. A hook could throw the exception
// again to find out, at the price of another unwinding: a sixth of a dropped message's
// instructions.
#ifndef VLT_PLUGIN_EXCEPTION_IN_FLIGHT_HPP
#define VLT_PLUGIN_EXCEPTION_IN_FLIGHT_HPP

#include <exception>

namespace com::velanto::connectivity {

class ExceptionInFlight {
 public:
  // Announces what a catch clause has caught, on this thread, until destroyed.
  explicit ExceptionInFlight(const std::exception& caught) noexcept;
  ExceptionInFlight() noexcept; // something that is no std::exception
  ExceptionInFlight(const ExceptionInFlight&) = delete;
  ExceptionInFlight& operator=(const ExceptionInFlight&) = delete;
  ~ExceptionInFlight();

  // To be called inside a catch clause: the text of the exception that was announced last, or,
  // where none is, of the one that was caught; null when it is no std::exception. Valid as long as
  // the clause runs.
  [[nodiscard]] static const char* what() noexcept;

 private:
  explicit ExceptionInFlight(const std::exception* caught) noexcept;

  const std::exception* caught_; // null: no std::exception
  const ExceptionInFlight* outer_;
};

} // namespace com::velanto::connectivity

#endif
