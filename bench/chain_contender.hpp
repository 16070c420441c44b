// The codec behind a first element of its chain: a recorder, or a function that only hands the batch
// on, which costs what any element of a chain costs a host.
#ifndef VLT_BENCH_CHAIN_CONTENDER_HPP
#define VLT_BENCH_CHAIN_CONTENDER_HPP

#include <optional>
#include <vector>

#include "bench/host_messages.hpp"
#include "tools/host/hosted_plugin.hpp"

namespace com::velanto::connectivity::bench {

// The libraries of a chain, by path.
struct chain_libraries_t {
  std::string codec;
  std::string recorder;
};

class ChainContender final : public BatchContender {
 public:
  // A recorder with these settings goes first; an empty value: none. Throws std::runtime_error.
  ChainContender(const chain_libraries_t& libraries, const data_t& recorder_settings,
                 const lines_t& lines, std::size_t batch);

  [[nodiscard]] std::size_t size() const noexcept override { return prototypes_.size(); }
  void fill(const order_t& order) override { copyMessages(prototypes_, order, messages_); }
  // Fills, and returns the wall time of each batch in nanoseconds.
  [[nodiscard]] std::vector<double> timeBatches(const order_t& order);

 protected:
  void convert(std::size_t first, std::size_t end) override;
  void release(std::size_t first, std::size_t end) noexcept override {
    releaseMessages(messages_, first, end);
  }
  [[nodiscard]] lines_t render() override;

 private:
  static void intoCodec(void* codec, vlt_underlying_message_t* start,
                        vlt_underlying_message_t* end);
  static void take(void* context, vlt_underlying_message_t* start, vlt_underlying_message_t* end);

  messages_t prototypes_;
  messages_t messages_;
  std::size_t batch_;
  std::size_t passed_on_ = 0; // of the last batch; they are in front
  tools::PluginLibrary codecs_;
  tools::PluginLibrary recorders_;
  tools::HostedPlugin codec_;
  std::optional<tools::HostedPlugin> recorder_;
};

} // namespace com::velanto::connectivity::bench

#endif
