// Groups the messages of a run by their way: the same fates of the same fields, regardless of
// values. Of thousands of explanations, one of each way is worth reading.
#ifndef VLT_TOOLS_EXPLAIN_EXPLANATION_GROUPS_HPP
#define VLT_TOOLS_EXPLAIN_EXPLANATION_GROUPS_HPP

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "tools/explain/explanation.hpp"

namespace com::velanto::connectivity::tools {

class ExplanationGroups {
 public:
  // Ways that it tells apart; more would be memory that grows with the input.
  static constexpr std::size_t MOST = 1000;

  void add(const record_t& record, const explanation_t& explanation);

  // A table of the most frequent ways with the first message of each. Lines have at most 79
  // columns, an empty one comes first; nothing without messages.
  [[nodiscard]] std::string text() const;

 private:
  struct way_t {
    std::uint64_t count = 0;
    std::uint64_t first_number = 0; // of the record
    std::string about;              // kind and outcome
    std::string first;              // FILE:LINE
  };

  std::map<std::string, way_t> ways_;
  std::uint64_t others_ = 0; // messages beyond MOST
};

} // namespace com::velanto::connectivity::tools

#endif
