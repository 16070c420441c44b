// A next link that keeps its messages: moves each one out of the batch.
#ifndef VLT_TOOLS_HOST_RECEIVED_HPP
#define VLT_TOOLS_HOST_RECEIVED_HPP

#include <exception>
#include <utility>
#include <vector>

#include "value/message.hpp"

namespace com::velanto::connectivity::tools {

struct Received {
  std::vector<Message> messages;
  int calls = 0;
  std::exception_ptr failure; // no memory for a message; no exception may cross the plug-in

  // The function of the link; the handle is the object.
  static void take(void* handle, vlt_underlying_message_t* start,
                   vlt_underlying_message_t* end) noexcept {
    auto& received = *static_cast<Received*>(handle);
    ++received.calls;
    auto* const last = reinterpret_cast<Message*>(end);
    try {
      for (auto* message = reinterpret_cast<Message*>(start); message != last; ++message) {
        received.messages.push_back(std::move(*message));
      }
    } catch (...) {
      received.failure = std::current_exception();
    }
  }
};

} // namespace com::velanto::connectivity::tools

#endif
