#include "tests/end_to_end/unwind_table.hpp"

#include <cstring>
#include <stdexcept>
#include <string>

namespace com::velanto::connectivity::test {

namespace {

constexpr std::uint8_t OMITTED = 0xff;
constexpr std::uint8_t RELATIVE_32 = 0x1b;       // signed, to where it stands
constexpr std::uint8_t RELATIVE_TO_TABLE = 0x3b; // signed 32 bits, to the head of .eh_frame_hdr
constexpr std::uint8_t UNSIGNED_32 = 0x03;
constexpr std::uint8_t UNSIGNED_LEB128 = 0x01;

void require(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(std::string("unwinding tables: ") + what);
}

// Reads on from an address of the library.
class Reader {
 public:
  Reader(const ElfFile& library, std::uint64_t address)
      : address_(address), bytes_(library.bytesAt(address)) {}

  [[nodiscard]] std::uint64_t address() const { return address_ + at_; }
  void skip(std::size_t count) { at_ += count; }

  template <class T>
  T next() {
    require(sizeof(T) <= bytes_.size() && at_ <= bytes_.size() - sizeof(T), "cut off");
    T value;
    std::memcpy(&value, bytes_.data() + at_, sizeof value);
    at_ += sizeof value;
    return value;
  }
  std::uint64_t leb128() {
    std::uint64_t value = 0;
    for (unsigned shift = 0;; shift += 7) {
      const auto byte = next<std::uint8_t>();
      value |= std::uint64_t{byte & 0x7fU} << shift;
      if ((byte & 0x80U) == 0) return value;
    }
  }
  std::string text() {
    std::string result;
    for (char c = next<char>(); c != '\0'; c = next<char>()) result.push_back(c);
    return result;
  }
  // An address relative to where it stands; 0 stays 0.
  std::uint64_t relative() {
    const std::uint64_t here = address();
    const auto distance = next<std::int32_t>();
    return distance == 0 ? 0 : here + static_cast<std::uint64_t>(std::int64_t{distance});
  }

 private:
  std::uint64_t address_;
  std::vector<std::uint8_t> bytes_;
  std::size_t at_ = 0;
};

std::vector<guarded_call_t> readCalls(const ElfFile& library, std::uint64_t address) {
  Reader table(library, address);
  require(table.next<std::uint8_t>() == OMITTED, "landing pads relative to something else");
  if (table.next<std::uint8_t>() != OMITTED) table.leb128(); // where the types are
  require(table.next<std::uint8_t>() == UNSIGNED_LEB128, "another encoding of calls");
  const std::uint64_t size = table.leb128();
  const std::uint64_t end = table.address() + size;
  std::vector<guarded_call_t> calls;
  while (table.address() < end) {
    table.leb128(); // start
    table.leb128(); // length
    const std::uint64_t landing_pad = table.leb128();
    calls.push_back({landing_pad, table.leb128()});
  }
  return calls;
}

// Whether the descriptions under a common head name a call table.
bool namesCallTable(const ElfFile& library, std::uint64_t head) {
  Reader common(library, head);
  common.skip(2 * sizeof(std::uint32_t) + 1); // length, mark, version
  return common.text().find('L') != std::string::npos;
}

frame_t readFrame(const ElfFile& library, std::uint64_t address) {
  Reader description(library, address);
  description.skip(sizeof(std::uint32_t)); // its length
  const std::uint64_t here = description.address();
  const std::uint64_t common = here - description.next<std::uint32_t>();
  frame_t frame{description.relative(), description.next<std::uint32_t>(), std::nullopt};
  description.leb128(); // the length of what follows
  if (!namesCallTable(library, common)) return frame;
  const std::uint64_t calls = description.relative();
  if (calls != 0) frame.calls = readCalls(library, calls);
  return frame;
}

} // namespace

std::vector<frame_t> readFrames(const ElfFile& library) {
  const std::uint64_t head = library.segment(PT_GNU_EH_FRAME).value().p_vaddr;
  Reader index(library, head);
  require(index.next<std::uint8_t>() == 1, "another version");
  require(index.next<std::uint8_t>() == RELATIVE_32, "another encoding of .eh_frame's address");
  require(index.next<std::uint8_t>() == UNSIGNED_32, "another encoding of the count");
  require(index.next<std::uint8_t>() == RELATIVE_TO_TABLE, "another encoding of the index");
  index.skip(sizeof(std::int32_t));
  const auto count = index.next<std::uint32_t>();
  std::vector<frame_t> frames;
  for (std::uint32_t i = 0; i < count; ++i) {
    index.skip(sizeof(std::int32_t)); // the function's start, which its description repeats
    const std::int64_t distance = index.next<std::int32_t>();
    frames.push_back(readFrame(library, head + static_cast<std::uint64_t>(distance)));
  }
  return frames;
}

} // namespace com::velanto::connectivity::test
