// The plug-in itself, through its C functions, in batches of a given size. Several can live at once,
// also of different libraries, and then on different threads.
#ifndef VLT_BENCH_PLUGIN_CONTENDER_HPP
#define VLT_BENCH_PLUGIN_CONTENDER_HPP

#include "bench/host_messages.hpp"
#include "tools/plugin_host/hosted_plugin.hpp"

namespace com::velanto::connectivity::bench {

class PluginContender final : public Contender {
 public:
  // `library` is the path of the plug-in library. Throws std::runtime_error.
  PluginContender(const std::string& library, const lines_t& lines, std::size_t batch,
                  tables_t tables);

  [[nodiscard]] std::size_t size() const noexcept override { return prototypes_.size(); }
  void fill(const order_t& order) override { copyMessages(prototypes_, order, messages_); }
  void run() override;
  [[nodiscard]] lines_t outcome() override;

 private:
  static void take(void* context, vlt_underlying_message_t* start, vlt_underlying_message_t* end);

  messages_t prototypes_;
  messages_t messages_;
  std::size_t batch_;
  lines_t* rendered_ = nullptr; // where the next link writes messages down; null while timing
  tools::PluginLibrary library_;
  tools::HostedPlugin plugin_;
};

} // namespace com::velanto::connectivity::bench

#endif
