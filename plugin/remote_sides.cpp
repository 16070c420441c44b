#include "plugin/remote_sides.hpp"

#include <stdexcept>

namespace com::velanto::connectivity {

namespace {

vlt_batch_function requireFunction(vlt_batch_function function) {
  if (function == nullptr) throw std::runtime_error("Cannot use a null batch function as a link");
  return function;
}

void call(vlt_batch_function function, void* handle, Message* start, Message* end) {
  function(handle, reinterpret_cast<vlt_underlying_message_t*>(start),
           reinterpret_cast<vlt_underlying_message_t*>(end));
}

} // namespace

RemoteHostSide::RemoteHostSide(void* handle, vlt_batch_function function)
    : handle_(handle), function_(requireFunction(function)) {}

void RemoteHostSide::sendBatchTowardsHost(Message* start, Message* end) {
  call(function_, handle_, start, end);
}

RemoteTransportSide::RemoteTransportSide(void* handle, vlt_batch_function function)
    : handle_(handle), function_(requireFunction(function)) {}

void RemoteTransportSide::sendBatchTowardsTransport(Message* start, Message* end) {
  call(function_, handle_, start, end);
}

} // namespace com::velanto::connectivity
