// The notifications to measure, made from a fixed seed: every run and every machine gets the same
// ones. They are lines of JSON, the one form that each contender can read into values of its own.
#ifndef VLT_BENCH_CORPUS_HPP
#define VLT_BENCH_CORPUS_HPP

#include <array>
#include <cstddef>

#include "bench/contender.hpp"

namespace com::velanto::connectivity::bench {

enum class kind_t { ALARMS, EVENTS, MEASUREMENTS, MANAGEDOBJECTS, OPERATIONS };

inline constexpr std::array ALL_KINDS = {kind_t::ALARMS, kind_t::EVENTS, kind_t::MEASUREMENTS,
                                         kind_t::MANAGEDOBJECTS, kind_t::OPERATIONS};

// The word for the kind in a path.
[[nodiscard]] const char* nameOf(kind_t kind) noexcept;

// `count` notifications of one kind. Measurements have 1 to 3 fragments of 1 to 4 series, managed
// objects 15 to 40 fields.
[[nodiscard]] lines_t notifications(kind_t kind, std::size_t count);

// 60 % measurements, 15 % events, 10 % alarms, 10 % managed objects, 5 % operations, shuffled.
[[nodiscard]] lines_t mixedNotifications(std::size_t count);

// Messages without a path, otherwise like the mix.
[[nodiscard]] lines_t passingMessages(std::size_t count);

// Notifications to drop, with the faults that a conversion finds last. In turn, a key is missing, a
// string is neither a time nor a word of its enumeration, a field is not a string.
[[nodiscard]] lines_t droppedNotifications(kind_t kind, std::size_t count);

// Notifications to drop for a field of the wrong kind: the source is not a map, or the count or the
// status is not a string. Kinds in turn, but for managed objects, which have no such field. Each also
// costs a line on standard error.
[[nodiscard]] lines_t wronglyTypedNotifications(std::size_t count);

// One event with `fields` fields that the conversion carries over.
[[nodiscard]] lines_t eventWithFields(std::size_t fields);

// One measurement with `series` series in one fragment.
[[nodiscard]] lines_t measurementWithSeries(std::size_t series);

// One managed object with `components` numeric components in its position.
[[nodiscard]] lines_t managedObjectWithPosition(std::size_t components);

} // namespace com::velanto::connectivity::bench

#endif
