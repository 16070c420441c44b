// The steps of conversions, as they appear in a plan, each with its cost in host calls next to it.
// planner.cpp has the steps of the kinds, one after the other.
//
// A key or string of the input that is not carried over is a spare. The plain floor frees all
// spares and copies all constants. The others move a spare whenever a constant of the same content
// is due, and free the rest.
#ifndef VLT_BENCH_FLOOR_PLAN_BUILDER_HPP
#define VLT_BENCH_FLOOR_PLAN_BUILDER_HPP

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/floor/output_model.hpp"
#include "bench/floor/texts.hpp"

namespace com::velanto::connectivity::bench::floor {

enum class variant_t {
  PLAIN, // the calls of the steps to the letter
  REUSE, // the same, but blocks with the same content move
  SIZED, // in addition, makes every output table at its final capacity
};

class PlanBuilder {
 public:
  static constexpr std::uint32_t PAYLOAD = 0;
  static constexpr std::uint32_t METADATA = 1;

  // A value taken out of an input table.
  struct taken_t {
    std::uint32_t table;
    std::uint32_t slot;
    const vlt_underlying_data_t* value;
  };

  // Both must outlive the builder.
  PlanBuilder(const vlt_underlying_message_t& notification, variant_t variant, Texts& texts);

  // ---- input

  [[nodiscard]] const vlt_underlying_data_t* find(std::uint32_t table, const char* key) const;
  // Frees the key; a deleted slot stays.
  std::optional<taken_t> takeIfPresent(std::uint32_t table, const char* key);
  // The same; throws for a notification without the key, which has no plan.
  taken_t take(std::uint32_t table, const char* key);
  // A map that the conversion takes apart itself. No call here; freeTable frees the rest of it, or
  // it lives on as a value.
  std::uint32_t open(const taken_t& map);
  void freeTable(std::uint32_t table) { plan_.freed_tables.push_back(table); }
  // Frees a string that is not carried over; nothing for kinds that own nothing. Throws for others.
  void drop(const taken_t& value);
  // Frees the key of an entry whose value is taken, and leaves a deleted slot.
  taken_t takeAt(std::uint32_t table, std::uint32_t slot);
  // Calls `visit` with the slot number of each entry that was not taken, in slot order.
  void forEach(std::uint32_t table, const std::function<void(std::uint32_t)>& visit) const;
  [[nodiscard]] const vlt_underlying_map_table_entry_t& slotAt(std::uint32_t table,
                                                               std::uint32_t slot) const;

  // ---- output

  [[nodiscard]] static origin_t moved(const taken_t& value) {
    return {origin_t::way_t::MOVED, value.table, value.slot};
  }
  [[nodiscard]] origin_t copied(const char* text) {
    return {origin_t::way_t::COPIED, texts_.of(text)};
  }
  [[nodiscard]] origin_t constant(const vlt_underlying_data_t& value);
  [[nodiscard]] origin_t constant(double value);
  // Sets a field: copies the key; the copy is in vain if the field is there, and its value goes.
  void put(OutputModel& output, const char* key, origin_t value);
  // Moves key and value; frees the key if the field is there, and the field's value goes.
  void putEntry(OutputModel& output, std::uint32_t table, std::uint32_t slot);
  // Moves the key, and the value from elsewhere; false, and nothing happens, if the key is there.
  bool insertUnder(OutputModel& output, std::uint32_t table, std::uint32_t slot,
                   origin_t value) const;
  // The field `key` as seconds if it is a time: frees and copies the key, frees the string.
  void convertDate(const char* key);
  // Copies a constant and frees it again.
  void copyInVain(const char* text) { in_vain_.push_back(texts_.of(text)); }
  // Makes a table, grows it as `model` says, and frees it once its entries have moved on.
  void makeTransient(const TableModel& model);
  // Makes a table and grows it. It takes no more entries. Returns its value.
  origin_t finish(const OutputModel& output);

  OutputModel fields;
  OutputModel metadata;

  [[nodiscard]] plan_t result();

 private:
  using spares_t = std::unordered_map<std::string, std::vector<taken_t>>;

  [[nodiscard]] std::uint32_t slotOfValue(std::uint32_t table,
                                          const vlt_underlying_data_t* value) const;
  [[nodiscard]] bool isTaken(std::uint32_t table, std::uint32_t slot) const;
  [[nodiscard]] std::optional<taken_t> reuse(spares_t& spares, std::uint32_t text);
  [[nodiscard]] origin_t withReuse(origin_t origin, spares_t& spares);
  void dropOrigin(origin_t value);

  plan_t plan_;
  variant_t variant_;
  Texts& texts_;
  std::vector<const vlt_underlying_map_table_t*> inputs_;
  std::vector<std::vector<std::uint32_t>> taken_; // slots, by input table
  spares_t spare_keys_;
  spares_t spare_values_;
  std::vector<std::uint32_t> in_vain_;
};

} // namespace com::velanto::connectivity::bench::floor

#endif
