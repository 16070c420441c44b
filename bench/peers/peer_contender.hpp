// A batch of messages in some library's tree. The Storage says how to hold one message:
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
class PeerContender final : public BatchContender {
 public:
  PeerContender(const lines_t& lines, std::size_t batch)
      : BatchContender(batch), dropped_(lines.size()) {
    prototypes_.reserve(lines.size());
    for (const std::string& line : lines) prototypes_.push_back(Storage::parse(line));
    messages_.resize(lines.size());
  }

  [[nodiscard]] std::size_t size() const noexcept override { return prototypes_.size(); }

  void fill(const order_t& order) override {
    for (std::size_t i = 0; i < size(); ++i)
      messages_[i].emplace(Storage::copy(prototypes_[order[i]]));
  }

 protected:
  void convert(std::size_t first, std::size_t end) override {
    for (std::size_t i = first; i < end; ++i) dropped_[i] = !convertOne(*messages_[i]);
  }

  void release(std::size_t first, std::size_t end) noexcept override {
    for (std::size_t i = first; i < end; ++i) messages_[i].reset();
  }

  [[nodiscard]] lines_t render() override {
    lines_t lines;
    for (std::size_t i = 0; i < size(); ++i) {
      if (dropped_[i]) continue;
      lines.push_back("{\"metadata\":" + Storage::write(messages_[i]->metadata) +
                      ",\"payload\":" + Storage::write(messages_[i]->payload) + '}');
    }
    return lines;
  }

 private:
  using message_t = typename Storage::message_t;

  // False: dropped and reported.
  static bool convertOne(message_t& message) {
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

  std::vector<typename Storage::prototype_t> prototypes_;
  std::vector<std::optional<message_t>> messages_;
  std::vector<bool> dropped_;
};

} // namespace com::velanto::connectivity::bench::peers

#endif
