// Carries plans out: the host calls that conversions come down to, on real blocks, with the moves
// that keep every block owned exactly once. The result is the plug-in's, slot for slot.
#ifndef VLT_BENCH_FLOOR_FLOOR_CONTENDER_HPP
#define VLT_BENCH_FLOOR_FLOOR_CONTENDER_HPP

#include "bench/floor/planner.hpp"
#include "bench/host_messages.hpp"

namespace com::velanto::connectivity::bench::floor {

// Takes it that memory does not run out.
class FloorContender final : public BatchContender {
 public:
  // Throws std::logic_error when a message has no plan.
  FloorContender(const lines_t& lines, std::size_t batch, variant_t variant, tables_t tables);

  [[nodiscard]] std::size_t size() const noexcept override { return prototypes_.size(); }
  void fill(const order_t& order) override;

 protected:
  void convert(std::size_t first, std::size_t end) override;
  void release(std::size_t first, std::size_t end) noexcept override {
    releaseMessages(messages_, first, end);
  }
  [[nodiscard]] lines_t render() override;

 private:
  void carryOut(const plan_t& plan, vlt_underlying_message_t& message);
  void openInputs(const plan_t& plan, const vlt_underlying_message_t& message);
  void freeTexts(const plan_t& plan);
  void buildOutputs(const plan_t& plan);
  void place(const plan_t& plan, vlt_underlying_map_table_t* table, const entry_t& entry);
  void eraseTaken(const plan_t& plan);

  messages_t prototypes_;
  messages_t messages_;
  Texts texts_;
  std::vector<plan_t> plans_; // by prototype
  order_t order_;
  std::vector<vlt_underlying_map_table_t*> inputs_;
  std::vector<vlt_underlying_map_table_t*> outputs_;
};

} // namespace com::velanto::connectivity::bench::floor

#endif
