#include "fuzz/plugin/scenario.hpp"

#include <array>
#include <string>
#include <utility>

#include "fuzz/plugin/edits.hpp"
#include "fuzz/plugin/samples.hpp"
#include "fuzz/plugin/value_maker.hpp"

namespace com::velanto::connectivity::fuzz {

namespace {

constexpr unsigned MOST_MESSAGES = 6;
constexpr unsigned MOST_EDITS = 8;

model::value_t configuration(unsigned choice) {
  model::value_t result;
  result.tag = VLT_TAG_MAP;
  put(result.table, text("tenantId"), text(choice % 2 == 0 ? "t4100" : ""));
  if (choice % 4 >= 2) {
    put(result.table, text("measurementSplittingChannel"), text("readings"));
    put(result.table, text("towardsHostChannelPrefix"), text("site."));
  }
  return result;
}

// Mostly a sample that converts. A batch without further bytes goes on with samples of other kinds.
message_t anySample(std::size_t place_in_batch, ValueMaker& input) {
  constexpr unsigned FAILING_FROM = 176;
  constexpr std::size_t TO_ANOTHER_KIND = 7;
  const std::size_t choice = input.byte();
  const samples_t& known = samples();
  if (choice >= FAILING_FROM) {
    return known.failing[(choice - FAILING_FROM) % known.failing.size()];
  }
  return known.messages[(choice + place_in_batch * TO_ANOTHER_KIND) % known.messages.size()];
}

// Mostly none: a refused configuration ends a run early.
unsigned editsOfSettings(std::uint8_t byte) { return byte < 176 ? 0 : byte % MOST_EDITS; }

void makeEdits(message_t& message, unsigned count, ValueMaker& input) {
  for (; count > 0 && !input.atEnd(); --count) edit(message, input);
}

} // namespace

scenario_t readScenario(std::span<const std::uint8_t> bytes) {
  static constexpr std::array<vlt_log_level_t, 8> LEVELS = {3, 6, 3, 2, 3, 7, 1, -1};
  ValueMaker input(bytes);
  scenario_t result;
  result.level = LEVELS[input.below(LEVELS.size())];

  const unsigned settings = input.byte();
  result.links = settings < 208 ? links_t::SET : settings < 240 ? links_t::THROWING : links_t::NONE;
  result.has_configuration = settings != 255;

  // Of the numbers from 192 on, a third each: in the creation, in the batch, from then on.
  const unsigned refusal = input.byte();
  if (refusal >= 192) {
    const std::uint64_t number = 1 + (refusal - 192) / 3;
    (refusal % 3 == 0 ? result.refused_in_create : result.refused_in_batch) = number;
    result.refused_from_there_on = refusal % 3 == 2;
  }

  const unsigned settings_edits = editsOfSettings(input.byte());
  const std::size_t count = 1 + input.below(MOST_MESSAGES);

  message_t carrier{configuration(settings), {}};
  makeEdits(carrier, settings_edits, input);
  result.configuration = std::move(carrier.payload);

  for (std::size_t i = 0; i < count; ++i) {
    message_t& message = result.messages.emplace_back(anySample(i, input));
    makeEdits(message, static_cast<unsigned>(input.below(MOST_EDITS)), input);
  }
  return result;
}

} // namespace com::velanto::connectivity::fuzz
