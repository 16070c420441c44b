// The words of the notifications and of the host events, as values for map keys. A name spells its
// word, with DOT for a full stop.
//
// Each constant carries its hash, and a number that tells copies of it apart
// (codec/spare_parts.hpp). The load of the library makes the constants, and nothing writes them
// later, so codecs share them without a lock. Nobody could catch an exception there: a constant
// without memory stays empty, and creating a codec then fails.
//
// Constants live as long as the library and every codec. When a process ends, the library's
// destructors run while threads still convert, and before destructors of the host. So the last user
// frees the constants.
#ifndef VLT_CODEC_VOCABULARY_HPP
#define VLT_CODEC_VOCABULARY_HPP

#include <atomic>
#include <cstdlib>
#include <new>

#include "value/hashed_key.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

class constant_t {
 public:
  static constexpr unsigned MAX_COUNT = 64;

  // Only while the library is loading, at most MAX_COUNT times, with a literal.
  explicit constant_t(const char* text) noexcept
      : text_(text), key_(copyOrNothing(text)), number_(made_++) {
    if (number_ == MAX_COUNT) std::abort(); // better now than in a batch
    all_[number_] = this;
  }
  constant_t(const constant_t&) = delete;
  constant_t& operator=(const constant_t&) = delete;
  // Nothing here, since codecs may still read the constant: the last user destroys the key.
  ~constant_t() {} // NOLINT(modernize-use-equals-default)

  [[nodiscard]] const char* text() const noexcept { return text_; }
  [[nodiscard]] std::uint64_t hash() const noexcept { return key_.hash(); }
  // Below MAX_COUNT, and different for every constant.
  [[nodiscard]] unsigned number() const noexcept { return number_; }

  // Lookups use the stored hash.
  operator key_ref_t() const noexcept { return key_; }
  operator const data_t&() const noexcept { return key_; }
  // A value of its own. Throws std::bad_alloc.
  [[nodiscard]] data_t copy() const { return key_.copy(); }
  // The entry of `value` under such a copy.
  [[nodiscard]] map_entry_t with(data_t&& value) const { return key_.with(std::move(value)); }

 private:
  friend class ConstantsUser;
  friend struct library_user_t;

  static data_t copyOrNothing(const char* text) noexcept {
    try {
      return data_t(text);
    } catch (const std::bad_alloc&) {
      lacking_ = true;
      return {};
    }
  }
  static void release() noexcept {
    if (--users_ > 0) return;
    for (unsigned i = 0; i < made_; ++i) all_[i]->key_.~hashed_key_t();
  }

  // NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): no batch changes them
  static inline constant_t const* all_[MAX_COUNT] = {};
  static inline unsigned made_ = 0;
  static inline bool lacking_ = false;
  static inline std::atomic<unsigned> users_ = 1; // the loaded library
  // NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

  const char* text_;
  union {
    hashed_key_t key_;
  };
  unsigned number_;
};

// Keeps the constants alive while it lives: every codec has one.
class ConstantsUser {
 public:
  // Throws std::bad_alloc when there was no memory for one of the constants, or when the last user
  // has freed them.
  ConstantsUser() {
    unsigned users = constant_t::users_;
    do {
      if (constant_t::lacking_ || users == 0) throw std::bad_alloc();
    } while (!constant_t::users_.compare_exchange_weak(users, users + 1));
  }
  ConstantsUser(const ConstantsUser&) = delete;
  ConstantsUser& operator=(const ConstantsUser&) = delete;
  ~ConstantsUser() { constant_t::release(); }
};
// NOLINTNEXTLINE(cppcoreguidelines-special-member-functions): only the loaded library, the first user
inline const struct library_user_t {
  ~library_user_t() { constant_t::release(); }
} LIBRARY_USER;

inline const constant_t DATA_T_("");
inline const constant_t DATA_T_ACKNOWLEDGED("ACKNOWLEDGED");
inline const constant_t DATA_T_ACTIVE("ACTIVE");
inline const constant_t DATA_T_additionParentIds("additionParentIds");
inline const constant_t DATA_T_additionParents("additionParents");
inline const constant_t DATA_T_assetParentIds("assetParentIds");
inline const constant_t DATA_T_assetParents("assetParents");
inline const constant_t DATA_T_o6a_Position("o6a_Position");
inline const constant_t DATA_T_o6a_SupportedMeasurements("o6a_SupportedMeasurements");
inline const constant_t DATA_T_o6a_SupportedOperations("o6a_SupportedOperations");
inline const constant_t DATA_T_childAdditionIds("childAdditionIds");
inline const constant_t DATA_T_childAdditions("childAdditions");
inline const constant_t DATA_T_childAssetIds("childAssetIds");
inline const constant_t DATA_T_childAssets("childAssets");
inline const constant_t DATA_T_childDeviceIds("childDeviceIds");
inline const constant_t DATA_T_childDevices("childDevices");
inline const constant_t DATA_T_CLEARED("CLEARED");
inline const constant_t DATA_T_count("count");
inline const constant_t DATA_T_creationTime("creationTime");
inline const constant_t DATA_T_CRITICAL("CRITICAL");
inline const constant_t DATA_T_deviceId("deviceId");
inline const constant_t DATA_T_deviceParentIds("deviceParentIds");
inline const constant_t DATA_T_deviceParents("deviceParents");
inline const constant_t DATA_T_EXECUTING("EXECUTING");
inline const constant_t DATA_T_FAILED("FAILED");
inline const constant_t DATA_T_firstOccurrenceTime("firstOccurrenceTime");
inline const constant_t DATA_T_id("id");
inline const constant_t DATA_T_lastUpdated("lastUpdated");
inline const constant_t DATA_T_MAJOR("MAJOR");
inline const constant_t DATA_T_measurements("measurements");
inline const constant_t DATA_T_MINOR("MINOR");
inline const constant_t DATA_T_name("name");
inline const constant_t DATA_T_params("params");
inline const constant_t DATA_T_PENDING("PENDING");
inline const constant_t DATA_T_position("position");
inline const constant_t DATA_T_pulsarPath("pulsarPath");
inline const constant_t DATA_T_vltDOTchannel("vlt.channel");
inline const constant_t DATA_T_vltDOTtype("vlt.type");
inline const constant_t DATA_T_severity("severity");
inline const constant_t DATA_T_source("source");
inline const constant_t DATA_T_status("status");
inline const constant_t DATA_T_SUCCESSFUL("SUCCESSFUL");
inline const constant_t DATA_T_supportedMeasurements("supportedMeasurements");
inline const constant_t DATA_T_supportedOperations("supportedOperations");
inline const constant_t DATA_T_tenantId("tenantId");
inline const constant_t DATA_T_text("text");
inline const constant_t DATA_T_time("time");
inline const constant_t DATA_T_towardsHostChannelPrefix("towardsHostChannelPrefix");
inline const constant_t DATA_T_type("type");
inline const constant_t DATA_T_units("units");
inline const constant_t DATA_T_value("value");
inline const constant_t DATA_T_WARNING("WARNING");

// The types of the five host events.
inline const constant_t ALARM_TYPE_DATA_T("com.tivra.ostrovia.Alarm");
inline const constant_t EVENT_TYPE_DATA_T("com.tivra.ostrovia.Event");
inline const constant_t MANAGEDOBJECT_TYPE_DATA_T("com.tivra.ostrovia.ManagedObject");
inline const constant_t MEASUREMENT_TYPE_DATA_T("com.tivra.ostrovia.Measurement");
inline const constant_t OPERATION_TYPE_DATA_T("com.tivra.ostrovia.Operation");

// The same for words that are needed as plain strings only.
inline constexpr char STR_Notifications2Codec[] = "Notifications2Codec";
inline constexpr char STR_measurementSplittingChannel[] = "measurementSplittingChannel";
inline constexpr char STR_ostroviaDOTmeasurements[] = "ostrovia.measurements";
inline constexpr char STR_ostroviaDOTdevices[] = "ostrovia.devices";
inline constexpr char STR_alarms[] = "alarms";
inline constexpr char STR_events[] = "events";
inline constexpr char STR_measurements[] = "measurements";
inline constexpr char STR_managedobjects[] = "managedobjects";
inline constexpr char STR_operations[] = "operations";

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
