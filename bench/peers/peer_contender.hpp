// A batch of messages in some library's tree. The Storage says how one message is held:
//
//   tree_t          the Tree for conversion.hpp
//   prototype_t     a parsed line
//   message_t       an owned message, with payload and metadata
//   parse(line)     a prototype
//   copy(prototype) a message; reads nothing but the prototype
//   tree(message)   the tree that its values belong to
//   write(value)    JSON text
#ifndef VLT_BENCH_PEERS_PEER_CONTENDER_HPP
#define VLT_BENCH_PEERS_PEER_CONTENDER_HPP

#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "bench/contender.hpp"
#include "bench/peers/conversion.hpp"

namespace com::velanto::connectivity::bench::peers {

template <class Storage>
class PeerContender final : public Contender {
 public:
  explicit PeerContender(const lines_t& lines) : dropped_(lines.size()) {
    prototypes_.reserve(lines.size());
    for (const std::string& line : lines) prototypes_.push_back(Storage::parse(line));
    messages_.resize(lines.size());
  }

  [[nodiscard]] std::size_t size() const noexcept override { return prototypes_.size(); }

  void fill(const order_t& order) override {
    for (std::size_t i = 0; i < size(); ++i)
      messages_[i].emplace(Storage::copy(prototypes_[order[i]]));
  }

  void run() override {
    convertAll();
    release();
  }

  [[nodiscard]] lines_t outcome() override {
    lines_t result;
    fill(ownOrder(size()));
    convertAll();
    for (std::size_t i = 0; i < size(); ++i) {
      if (dropped_[i]) continue;
      result.push_back("{\"metadata\":" + Storage::write(messages_[i]->metadata) +
                       ",\"payload\":" + Storage::write(messages_[i]->payload) + '}');
    }
    release();
    return result;
  }

 private:
  using message_t = typename Storage::message_t;

  void convertAll() {
    for (std::size_t i = 0; i < size(); ++i) dropped_[i] = !convert(*messages_[i]);
  }
  // False: dropped and reported.
  static bool convert(message_t& message) {
    std::optional<std::string> id;
    try {
      Conversion<typename Storage::tree_t>::convert(Storage::tree(message), message.payload,
                                                    message.metadata, id);
      return true;
    } catch (const std::exception& failure) {
      reportDropped(id, failure.what());
      return false;
    }
  }
  void release() {
    for (auto& message : messages_) message.reset();
  }

  std::vector<typename Storage::prototype_t> prototypes_;
  std::vector<std::optional<message_t>> messages_;
  std::vector<bool> dropped_;
};

} // namespace com::velanto::connectivity::bench::peers

#endif
