#include "plugin/exception_in_flight.hpp"

#include <utility>

namespace com::velanto::connectivity {

namespace {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): one a thread, scoped
constinit thread_local const ExceptionInFlight* innermost = nullptr;

} // namespace

ExceptionInFlight::ExceptionInFlight(const std::exception* caught) noexcept
    : caught_(caught), outer_(std::exchange(innermost, this)) {}
ExceptionInFlight::ExceptionInFlight(const std::exception& caught) noexcept
    : ExceptionInFlight(&caught) {}
ExceptionInFlight::ExceptionInFlight() noexcept : ExceptionInFlight(nullptr) {}

ExceptionInFlight::~ExceptionInFlight() { innermost = outer_; }

const char* ExceptionInFlight::what() noexcept {
  if (innermost != nullptr) {
    return innermost->caught_ == nullptr ? nullptr : innermost->caught_->what();
  }
  try {
    throw;
  } catch (const std::exception& e) {
    return e.what(); // outlives this clause: the caller's holds it too
  } catch (...) {
    return nullptr;
  }
}

} // namespace com::velanto::connectivity
