// The fields that a conversion has taken out of its notification, until the event takes them over.
// They lie here and not in the conversion's frame, so that a conversion which ends in a fault has
// nothing to free: unwinding a frame that has costs about as much as a whole conversion.
#ifndef VLT_CODEC_TAKEN_FIELDS_HPP
#define VLT_CODEC_TAKEN_FIELDS_HPP

#include <cstddef>
#include <memory>
#include <utility>

#include "value/data_t.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

class TakenFields {
 public:
  static constexpr std::size_t MOST = 10; // an alarm takes nine

  TakenFields() noexcept {} // NOLINT(modernize-use-equals-default): leaves the fields unmade
  TakenFields(const TakenFields&) = delete;
  TakenFields& operator=(const TakenFields&) = delete;
  TakenFields(TakenFields&& other) noexcept { takeAll(other); }
  TakenFields& operator=(TakenFields&& other) noexcept {
    if (this != &other) {
      freeAll();
      takeAll(other);
    }
    return *this;
  }
  ~TakenFields() { freeAll(); }

  // At most MOST times. The reference is valid until this object is destroyed or moved.
  [[nodiscard]] data_t& keep(data_t&& field) noexcept {
    return *new (&fields_[count_++]) data_t(std::move(field));
  }

 private:
  void freeAll() noexcept { std::destroy_n(fields_, std::exchange(count_, 0)); }
  // There must be none here.
  void takeAll(TakenFields& other) noexcept {
    std::uninitialized_move_n(other.fields_, other.count_, fields_);
    count_ = other.count_;
    other.freeAll();
  }

  std::size_t count_ = 0;
  union {
    data_t fields_[MOST]; // the first `count_` are made
  };
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
