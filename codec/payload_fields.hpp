// The vocabulary of the conversions: extract fields from a notification's payload, convert them, and
// put them into the event under construction.
//
// Extracting a field removes it. The fields that a conversion has not extracted when it finishes are
// copied over whole, so no field is ever both converted and copied. A missing field, one of the
// wrong kind and an unreadable time are faults whose text names the key. The first one is noted in
// the notification; the functions that extract required fields do nothing after that, and their
// results mean nothing.
#ifndef VLT_CODEC_PAYLOAD_FIELDS_HPP
#define VLT_CODEC_PAYLOAD_FIELDS_HPP

#include <boost/optional.hpp>

#include "codec/field_checks.hpp"
#include "codec/pulsar_message_disassembler.hpp"
#include "codec/tivra_message_builder.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

// Removes a required field and returns its value; its key becomes a spare part. The fault of a
// missing field: "Required key 'KEY' missing from message payload".
[[nodiscard]] data_t extractField(PulsarMessageDisassembler& notification, constant_t const& key);

// Extracts "time": seconds since the epoch. The fault of an unreadable text: "Error parsing timestamp
// 'TEXT' in key 'time'".
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
