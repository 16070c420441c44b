// One way of turning notifications into host events. All of them start from the same lines of JSON
// and own their inputs, so a run is the whole life of a batch:
//
//   fill      builds new inputs, not timed.
//   run       batch by batch, timed: inputs → outputs, then everything released.
//   outcome   the same conversions, with their results written down, for comparison.
#ifndef VLT_BENCH_CONTENDER_HPP
#define VLT_BENCH_CONTENDER_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace com::velanto::connectivity::bench {

// One message a line, as ndjson/ reads them.
using lines_t = std::vector<std::string>;

// The order of the messages in a batch.
using order_t = std::vector<std::uint32_t>;

// The order of the corpus.
[[nodiscard]] inline order_t ownOrder(std::size_t size) {
  order_t order(size);
  std::iota(order.begin(), order.end(), 0);
  return order;
}

// Another order for each round, the same for all contenders. The places of a batch's blocks decide
// how much work the heap has when it frees them. With one fixed order that would be up to a fifth
// of the time, by chance.
[[nodiscard]] inline order_t orderOfRound(std::size_t size, std::size_t round) {
  order_t order = ownOrder(size);
  std::mt19937_64 engine(round);
  std::shuffle(order.begin(), order.end(), engine);
  return order;
}

class Contender {
 public:
  Contender() = default;
  Contender(const Contender&) = delete;
  Contender& operator=(const Contender&) = delete;
  virtual ~Contender() = default;

  // Messages per run.
  [[nodiscard]] virtual std::size_t size() const noexcept = 0;
  // Before every run; `order` names each message once. Throws std::bad_alloc.
  virtual void fill(const order_t& order) = 0;
  virtual void run() = 0;
  // Fills, runs and renders: the messages that reach the next link, as JSON in their order.
  [[nodiscard]] virtual lines_t outcome() = 0;
};

// Converts so many messages before it releases them; at least one.
class BatchContender : public Contender {
 public:
  explicit BatchContender(std::size_t batch) noexcept : batch_(batch) {}

  void run() final {
    for (std::size_t first = 0; first < size(); first += batch_) {
      const std::size_t end = std::min(first + batch_, size());
      convert(first, end);
      release(first, end);
    }
  }

  [[nodiscard]] lines_t outcome() final {
    fill(ownOrder(size()));
    convert(0, size());
    lines_t lines = render();
    release(0, size());
    return lines;
  }

 protected:
  // The messages at `first` up to `end`.
  virtual void convert(std::size_t first, std::size_t end) = 0;
  virtual void release(std::size_t first, std::size_t end) noexcept = 0;
  // The messages that reach the next link, after the whole conversion.
  [[nodiscard]] virtual lines_t render() = 0;

 private:
  std::size_t batch_;
};

} // namespace com::velanto::connectivity::bench

#endif
