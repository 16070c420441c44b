// Helpers of the codec's tests: wrap a payload, convert it, compare whole events, and tell whether a
// block is still the same.
#ifndef VLT_TESTS_CODEC_NOTIFICATIONS_HPP
#define VLT_TESTS_CODEC_NOTIFICATIONS_HPP

#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "codec/pulsar_message_disassembler.hpp"
#include "codec/tivra_message_builder.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

using plugins::pulsar::PulsarMessageDisassembler;
using plugins::pulsar::SpareParts;
using plugins::pulsar::TivraMessageBuilder;

using Conversion = std::unique_ptr<TivraMessageBuilder>(PulsarMessageDisassembler&);

// A builder that belongs to none of the five kinds.
class PlainBuilder final : public TivraMessageBuilder {
 public:
  explicit PlainBuilder(data_t&& id = text("42"), data_t&& type = text("a.b.Type"),
                        SpareParts&& spares = SpareParts())
      : TivraMessageBuilder(std::move(id), std::move(type), spares) {}
};

// The payload as a notification, as the conversions get it.
inline PulsarMessageDisassembler wrapped(data_t&& payload) {
  return PulsarMessageDisassembler(Message(std::move(payload)));
}

// The event made from a payload.
inline Message converted(Conversion* convert, map_t&& payload) {
  PulsarMessageDisassembler notification = wrapped(std::move(payload));
  return TivraMessageBuilder::getResult(convert(notification));
}

// The fields of the event made from a payload.
inline map_t fieldsOf(Conversion* convert, map_t&& payload) {
  Message message = converted(convert, std::move(payload));
  return std::move(message.getPayload().get<map_t>());
}

inline void remove(map_t& map, const char* key) { map.erase(map.find(data_t(key))); }

// Equality with both texts in the failure message.
inline ::testing::AssertionResult same(const data_t& actual, const data_t& expected) {
  if (actual == expected) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure()
         << "it is " << to_string(actual) << " [" << actual.type_tag() << "], not "
         << to_string(expected) << " [" << expected.type_tag() << "]";
}
inline ::testing::AssertionResult same(const map_t& actual, const map_t& expected) {
  if (actual == expected) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure()
         << "it is " << to_string(actual) << ", not " << to_string(expected);
}

// The content's 8 bytes. For a kind with a block, they identify the block.
inline std::uint64_t blockOf(const data_t& value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value.underlying()->value, sizeof bits);
  return bits;
}
inline std::uint64_t blockOf(const map_t& map) {
  return reinterpret_cast<std::uintptr_t>(map.table());
}
// The block of the key of an entry.
inline std::uint64_t keyBlockOf(map_t& map, const data_t& key) {
  (void)at(map, key); // fails without an entry
  return blockOf((*map.find(key)).first);
}

} // namespace com::velanto::connectivity::test

#endif
