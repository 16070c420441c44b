// Tells a hook that runs inside a catch clause what was caught. A hook could throw the exception
// again to find out, at the price of another unwinding: a sixth of a dropped message's instructions.
#ifndef VLT_PLUGIN_EXCEPTION_IN_FLIGHT_HPP
#define VLT_PLUGIN_EXCEPTION_IN_FLIGHT_HPP

#include <exception>

namespace com::velanto::connectivity {

class ExceptionInFlight {
 public:
  // Announces what a catch clause has caught, on this thread, until destroyed.
  explicit ExceptionInFlight(const std::exception& caught) noexcept;
  ExceptionInFlight(const ExceptionInFlight&) = delete;
  ExceptionInFlight& operator=(const ExceptionInFlight&) = delete;
  ~ExceptionInFlight();

  // To be called inside a catch clause, announced or not: the text of the exception, or null when
  // it is no std::exception. Valid as long as that clause runs.
  [[nodiscard]] static const char* what() noexcept;

 private:
  const std::exception* outer_;
};

} // namespace com::velanto::connectivity

#endif
