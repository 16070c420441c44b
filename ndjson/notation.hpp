// The value that {"$":[…]} means in a recorded line; recorded_writer.hpp has the table.
#ifndef VLT_NDJSON_NOTATION_HPP
#define VLT_NDJSON_NOTATION_HPP

#include <vector>

#include "value/data_t.hpp"

namespace com::velanto::connectivity {

// `parts` are the elements of the array, read as values themselves. In place of a list of pairs, they
// have an empty list and then all keys and values in turn. A borrowed string's text lives
// as long as the process. Throws MalformedJson without a column, std::bad_alloc.
[[nodiscard]] data_t valueOfNotation(std::vector<data_t>&& parts);

} // namespace com::velanto::connectivity

#endif
