// A batch as the host owns it: an array of messages, and their blocks, each with one owner.
#ifndef VLT_FUZZ_PLUGIN_BATCH_HPP
#define VLT_FUZZ_PLUGIN_BATCH_HPP

#include <span>
#include <vector>

#include "fuzz/plugin/message_model.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::fuzz {

// The blocks of messages, in the order of addresses.
struct blocks_t {
  std::vector<const void*> all;
  std::vector<const void*> uncopied; // lists, buffers, custom objects, which are only ever moved
  bool are_shared = false;           // two values own the same block
};

class Batch {
 public:
  explicit Batch(std::span<const message_t> messages);
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;
  ~Batch(); // frees the contents of the messages

  [[nodiscard]] Message* begin() { return reinterpret_cast<Message*>(messages_.data()); }
  [[nodiscard]] Message* end() { return begin() + messages_.size(); }
  [[nodiscard]] const vlt_underlying_message_t& operator[](std::size_t i) const {
    return messages_[i];
  }
  [[nodiscard]] std::size_t size() const { return messages_.size(); }

  [[nodiscard]] blocks_t blocks() const;

 private:
  std::vector<vlt_underlying_message_t> messages_;
};

} // namespace com::velanto::connectivity::fuzz

#endif
