// Writes a line again with stand-ins for the texts that are to be hidden. All else stays byte for
// byte: names, the order of entries, white space, the notation of recorded lines.
//
//   line                          replaced in it
//   {"metadata":…,"payload":…}    values
//   {"recorded":…,…}              the same, through the notation of ndjson/recorded_writer.hpp; for
//                                 all-times, "time" in "recorded"
//   {"recording":{"head":…}}      a member "redacted" with the names of the fields is added; for
//                                 all-times "started" and, in a foot, "ended"
#ifndef VLT_TOOLS_REPLAY_REDACTING_LINE_REDACTOR_HPP
#define VLT_TOOLS_REPLAY_REDACTING_LINE_REDACTOR_HPP

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "tools/replay/redacting/pseudonyms.hpp"
#include "tools/replay/redacting/redacted_fields.hpp"

namespace com::velanto::connectivity::tools {

// One line at a time, one thread.
class LineRedactor {
 public:
  // Both must outlive this.
  LineRedactor(const redacted_fields_t& fields, const Pseudonyms& pseudonyms)
      : fields_(fields), pseudonyms_(pseudonyms) {}

  // `line` is one that JsonReader accepts as a message, or one of a recording's own. The result is
  // valid until the next call.
  [[nodiscard]] const std::string& redacted(std::string_view line);

  // Whether a line so far had a value at `place` of the fields.
  [[nodiscard]] bool hasMet(FieldSet::place_t place) const { return met_.contains(place); }

 private:
  using place_t = FieldSet::place_t;

  // What a value is: the line, the metadata, the path in it, any other part of a message, or what a
  // recording says of itself or of a message (in its head: one more member).
  struct spot_t {
    enum { LINE, METADATA_MAP, PATH, MESSAGE, OWN, HEAD } role;
    place_t place = nullptr;
  };
  // An open bracket. Pairs: a map in the notation, a list of lists [key, value].
  struct frame_t {
    enum { OBJECT, LIST, PAIRS, PAIR } kind;
    spot_t spot;
  };

  void step();
  void close();
  void member(const spot_t& of);
  void ownMember(const spot_t& of, std::string_view name);
  void notation(const spot_t& of);
  void pair(const spot_t& of);
  void value(const spot_t& of);
  void text(const spot_t& of);

  [[nodiscard]] static spot_t below(const spot_t& of, std::string_view name);
  [[nodiscard]] bool isNamed(const spot_t& of) const { return FieldSet::covers(of.place); }
  [[nodiscard]] bool hides(const spot_t& of) const { return isNamed(of) || fields_.all_texts; }
  [[nodiscard]] std::string standInFor(const spot_t& of, const std::string& text) const;
  [[nodiscard]] std::string namesAfter(std::string list) const;

  // Each returns the text at the place of reading and moves on to its end.
  std::string_view token();
  std::string_view string();
  std::string_view anyValue();
  [[nodiscard]] std::string textOf(std::string_view string);
  void skipBlank();
  [[nodiscard]] char next() const { return at_ < line_.size() ? line_[at_] : '\0'; }
  void replace(std::string_view token, std::string_view by);

  const redacted_fields_t& fields_;
  const Pseudonyms& pseudonyms_;
  std::set<place_t> met_;
  JsonReader reader_;
  std::vector<frame_t> open_;
  std::string_view line_;
  std::size_t at_ = 0;
  std::size_t copied_ = 0; // bytes of the line that are in `out_` already
  bool is_recorded_ = false;
  bool names_fields_ = false; // a head from an earlier run does
  std::string out_;
};

} // namespace com::velanto::connectivity::tools

#endif
