// The vocabulary of the conversions: extract fields from a notification's payload, convert them, and
// put them into the event under construction.
//
// Extracting a field removes it. The last step of a conversion moves all other fields to the event,
// so no field is both converted and copied. A missing field, one of the wrong kind and an
// unreadable time are faults (codec/fault.hpp) whose message names the key.
#ifndef VLT_CODEC_PAYLOAD_FIELDS_HPP
#define VLT_CODEC_PAYLOAD_FIELDS_HPP

#include <boost/optional.hpp>
#include <stdexcept>
#include <type_traits>

#include "codec/pulsar_message_disassembler.hpp"
#include "codec/tivra_message_builder.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

// The fault "Problem with key 'KEY': ", then the message of `error`.
[[nodiscard]] std::runtime_error problemWithKey(char const* key, const std::runtime_error& error);

// The content of `value` as T: char const* (which may be null), std::int64_t, or map_t* (which points
// into the value). A value of another kind is a fault, "Problem with key 'KEY': " followed by the
// typed get's error. With a fault the result is null or 0.
template <class T, class Value>
[[nodiscard]] T getFromDataTReportingKey(Value& value, char const* key, Fault& fault) {
  using Content = std::conditional_t<std::is_same_v<T, map_t*>, map_t, T>;
  if (fault) return T();
  auto* const found = value.template get_if<Content>();
  if (found == nullptr) fault.note(problemWithKey(key, value.template report_mismatch<Content>()));
  if constexpr (std::is_same_v<T, map_t*>) {
    return found;
  } else {
    return found == nullptr ? T() : *found;
  }
}

// A value of no string kind is a fault: "Value for key 'KEY' is not a string."
void noteNotAString(char const* key, Fault& fault);
inline void ensureValueDataTIsString(char const* key, data_t const& value, Fault& fault) {
  if (!value.is_string()) noteNotAString(key, fault);
}

// Whether the value is a number, or a string that strtod can begin to read and that has no 'x' in
// it: 12abc is numeric, 0x10 is not, on purpose.
[[nodiscard]] bool dataTConvertableToFloat(data_t const& value);

// Removes a required field and returns its value; its key becomes a spare part. The fault of a
// missing field: "Required key 'KEY' missing from message payload".
[[nodiscard]] data_t extractField(PulsarMessageDisassembler& notification, constant_t const& key);

// Extracts "time": seconds since the epoch. The fault of an unreadable string: "Error parsing
// timestamp 'TEXT' in key 'time'".
[[nodiscard]] double extractTimeTimestamp(PulsarMessageDisassembler& notification);

// Extracts the id from the map that `source` must be. Frees the rest of the map; key and table become
// spare parts. The fault of a missing id: "Required key 'id' missing from source".
[[nodiscard]] data_t extractSourceId(data_t&& source, PulsarMessageDisassembler& notification);

// Removes the entry under `key` and returns its value; empty, and the map untouched, when absent.
[[nodiscard]] boost::optional<data_t> extractFromMapIfPresent(map_t& map, constant_t const& key);

// Moves the entry under `from`, if there is one, into the event's field `to`, over any there.
void remapPayloadElement(constant_t const& from, constant_t const& to,
                         PulsarMessageDisassembler& notification, TivraMessageBuilder& builder);

// Moves the entry under `key`, if there is one, into the event's field of that name, over any
// there: as seconds since the epoch when it is a readable timestamp, otherwise as it is.
void convertDateTimePayloadElement(constant_t const& key, PulsarMessageDisassembler& notification,
                                   TivraMessageBuilder& builder);

// Moves all remaining fields of the payload into the event's fields, over fields of the same names.
void copyOverRemainingPayloadElements(PulsarMessageDisassembler& notification,
                                      TivraMessageBuilder& builder);

// Converts the optional dates "creationTime", "firstOccurrenceTime" and "lastUpdated", and moves
// everything else that is left: how events, alarms and operations end.
void carryOverDatesAndRemaining(PulsarMessageDisassembler& notification,
                                TivraMessageBuilder& builder);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
