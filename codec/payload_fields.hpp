// The vocabulary of the conversions: take fields out of a notification's payload, convert them, and
// put them into the event under construction.
//
// Taking a field removes it. What a conversion has not taken when it finishes is copied over whole,
// so no field is ever both converted and copied. A missing field, one of the wrong kind and an
// unreadable time are faults with a text that names the key. The steps of the conversions note them
// in the notification, and do nothing for one that is faulty; nothing is rolled back then, since it
// is dropped. The functions that say so throw them as std::runtime_error instead.
#ifndef VLT_CODEC_PAYLOAD_FIELDS_HPP
#define VLT_CODEC_PAYLOAD_FIELDS_HPP

#include <boost/optional.hpp>

#include "codec/field_checks.hpp"
#include "codec/pulsar_message_disassembler.hpp"
#include "codec/tivra_message_builder.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

// What error texts call the two maps that fields are required in.
inline constexpr const char* IN_MESSAGE_PAYLOAD = "message payload";
inline constexpr const char* IN_SOURCE = "source";

// Removes the entry under `key` and returns its value; empty, and the map untouched, when absent.
[[nodiscard]] boost::optional<data_t> extractFromMapIfPresent(map_t& map, key_ref key);

// The same, but throws "Required key 'KEY' missing from WHERE" when absent.
[[nodiscard]] data_t extractFromMapOrThrow(map_t& map, key_ref key, char const* where);

// Takes "time" out of the payload: seconds since the epoch. Throws when it is missing, no string,
// or unreadable: "Error parsing timestamp 'TEXT' in key 'time'".
[[nodiscard]] double extractTimeTimestampOrThrow(PulsarMessageDisassembler& notification);

// The steps of the conversions. What they return for a faulty notification means nothing.

// Removes a required field and returns its value; its key becomes a spare part.
[[nodiscard]] data_t takeField(PulsarMessageDisassembler& notification, constant_t const& key);

// extractTimeTimestampOrThrow as a step.
[[nodiscard]] double takeTime(PulsarMessageDisassembler& notification);

// Takes the id out of the map that `source` must be. The rest of it is freed, key and table become
// spare parts.
[[nodiscard]] data_t reduceToId(data_t&& source, PulsarMessageDisassembler& notification);

// Moves the entry under `from`, if there is one, into the event's field `to`, over any there.
void remapPayloadElement(data_t const& from, data_t&& to, PulsarMessageDisassembler& notification,
                         TivraMessageBuilder& builder);
// The same for a field that has a constant name; its key is copied only when there is an entry.
void remapPayloadElement(constant_t const& from, constant_t const& to,
                         PulsarMessageDisassembler& notification, TivraMessageBuilder& builder);

// Moves the entry under `key`, if there is one, into the event's field of that name, over any
// there: as seconds since the epoch when it is a readable timestamp, otherwise as it is.
void convertDateTimePayloadElement(key_ref key, PulsarMessageDisassembler& notification,
                                   TivraMessageBuilder& builder);

// Moves everything that is left in the payload into the event's fields, over those of the same
// names.
void copyOverRemainingPayloadElements(PulsarMessageDisassembler& notification,
                                      TivraMessageBuilder& builder);

// Converts the optional dates "creationTime", "firstOccurrenceTime" and "lastUpdated", and moves
// everything else that is left: how events, alarms and operations end.
void carryOverDatesAndRemaining(PulsarMessageDisassembler& notification,
                                TivraMessageBuilder& builder);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
