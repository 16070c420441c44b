// The plug-in itself, through its C functions, in batches of a given size. Several can live at once,
// also of different libraries, and then on different threads.
#ifndef VLT_BENCH_PLUGIN_CONTENDER_HPP
#define VLT_BENCH_PLUGIN_CONTENDER_HPP

#include "bench/host_messages.hpp"
#include "tools/host/hosted_plugin.hpp"

namespace com::velanto::connectivity::bench {

class PluginContender final : public BatchContender {
 public:
  // `library` is the path of the plug-in library. Throws std::runtime_error.
  PluginContender(const std::string& library, const lines_t& lines, std::size_t batch,
                  tables_t tables);

  [[nodiscard]] std::size_t size() const noexcept override { return prototypes_.size(); }
  void fill(const order_t& order) override { copyMessages(prototypes_, order, messages_); }

 protected:
  void convert(std::size_t first, std::size_t end) override;
  void release(std::size_t first, std::size_t end) noexcept override {
    releaseMessages(messages_, first, end);
  }
  [[nodiscard]] lines_t render() override;

 private:
  static void take(void* context, vlt_underlying_message_t* start, vlt_underlying_message_t* end);

  messages_t prototypes_;
  messages_t messages_;
  std::size_t passed_on_ = 0; // of the last batch; they are in front
  tools::PluginLibrary library_;
  tools::HostedPlugin plugin_;
};

} // namespace com::velanto::connectivity::bench

#endif
