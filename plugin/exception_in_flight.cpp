#include "plugin/exception_in_flight.hpp"

#include <utility>

namespace com::velanto::connectivity {

namespace {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): one a thread, scoped
constinit thread_local const std::exception* announced = nullptr;

} // namespace

ExceptionInFlight::ExceptionInFlight(const std::exception& caught) noexcept
    : outer_(std::exchange(announced, &caught)) {}

ExceptionInFlight::~ExceptionInFlight() { announced = outer_; }

const char* ExceptionInFlight::what() noexcept {
  if (announced != nullptr) return announced->what();
  try {
    throw;
  } catch (const std::exception& e) {
    return e.what(); // outlives this clause: the caller's holds it too
  } catch (...) {
    return nullptr;
  }
}

} // namespace com::velanto::connectivity
