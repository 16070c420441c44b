// Checks the order in which a conversion looks at its fields: each fault alone is reported, and of
// any two at once the one that stands first in the table.
#ifndef VLT_TESTS_CODEC_FAULTS_HPP
#define VLT_TESTS_CODEC_FAULTS_HPP

#include <string>
#include <vector>

#include "tests/codec/notifications.hpp"
#include "tests/support/stderr_capture.hpp"

namespace com::velanto::connectivity::test {

// What a wrong kind is reported as, whole.
inline std::string wrong_kind(const char* key, const char* asked, const char* actual) {
  return std::string("Problem with key '") + key + "': Incorrect type in get (you asked for " +
         asked + " but it's actually " + actual + ")";
}

struct fault_t {
  std::string key;   // "source.id" is the id inside the source
  data_t value;      // what is put there; empty: the entry is taken out
  std::string error; // the whole text
};

inline void inject(const fault_t& fault, map_t& payload) {
  const std::size_t dot = fault.key.find('.');
  const bool inner = dot != std::string::npos;
  map_t& map = inner ? at(payload, fault.key.substr(0, dot).c_str()).get<map_t>() : payload;
  const std::string key = inner ? fault.key.substr(dot + 1) : fault.key;
  if (fault.value.empty()) {
    remove(map, key.c_str());
  } else {
    map[data_t(key.c_str())] = fault.value;
  }
}

// Two faults of one field cannot be had at once.
inline bool exclude_each_other(const fault_t& left, const fault_t& right) {
  return left.key.substr(0, left.key.find('.')) == right.key.substr(0, right.key.find('.'));
}

// `faults` stand in the order of the checks; `example` makes a payload without any.
inline void expectReportedInOrder(Conversion* convert, map_t (*example)(),
                                  const std::vector<fault_t>& faults) {
  const auto error = [&](const fault_t& first, const fault_t* second) {
    map_t payload = example();
    inject(first, payload);
    if (second != nullptr) inject(*second, payload);
    return conversion_error(convert, std::move(payload));
  };
  // Wrong kinds write to standard error, which is looked at elsewhere.
  stderr_of([&] {
    for (std::size_t i = 0; i < faults.size(); ++i) {
      EXPECT_EQ(error(faults[i], nullptr), faults[i].error) << "row " << i;
      for (std::size_t j = i + 1; j < faults.size(); ++j) {
        if (exclude_each_other(faults[i], faults[j])) continue;
        EXPECT_EQ(error(faults[j], &faults[i]), faults[i].error) << "rows " << i << " and " << j;
      }
    }
  });
}

} // namespace com::velanto::connectivity::test

#endif
