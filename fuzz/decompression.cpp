// Compressed input: the content comes back byte for byte. A file that is cut or damaged never reads
// as something else: its reader refuses it, with the content up to some point.
//
//   input   byte: gzip, Zstandard or neither. Byte: members, up to three. Two bytes: a place in the
//           file. Byte: the bits to flip there; none: the file ends there. The rest: the content.
//           In a file of neither the rest is the file
#include "tools/replay/input/decompression.hpp"

#include <zlib.h>
#include <zstd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/finding.hpp"
#include "tools/options/exit_status.hpp"

namespace fuzz = com::velanto::connectivity::fuzz;
namespace tools = com::velanto::connectivity::tools;

namespace {

constexpr std::size_t HEAD = 5;                       // bytes of an input before the content
constexpr std::size_t MAGIC = 4;                      // bytes by which the reader knows a format
constexpr std::size_t ENOUGH = std::size_t{16} << 20; // of a file that only this program would make

struct reading_t {
  std::string content; // before the refusal
  bool is_refused = false;
  bool operator==(const reading_t&) const = default;
};

reading_t read(const std::string& file) {
  reading_t result;
  try {
    const auto stream = tools::decompressed(std::make_unique<std::istringstream>(file), "in");
    std::array<char, 4096> piece{};
    while (result.content.size() < ENOUGH &&
           (stream->read(piece.data(), piece.size()), stream->gcount() > 0)) {
      result.content.append(piece.data(), static_cast<std::size_t>(stream->gcount()));
    }
  } catch (const tools::ReplayError& e) {
    result.is_refused = true;
    fuzz::requireReason(e.what());
    fuzz::require(e.status() == tools::EXIT_IO && std::string_view(e.what()).starts_with("in: "),
                  "a refusal names the file");
  }
  return result;
}

std::string gzip(std::string_view content) {
  std::string file(compressBound(content.size()) + 64, '\0');
  z_stream state{};
  deflateInit2(&state, 1, Z_DEFLATED, MAX_WBITS + 16, 8, Z_DEFAULT_STRATEGY);
  state.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
  state.avail_in = static_cast<uInt>(content.size());
  state.next_out = reinterpret_cast<Bytef*>(file.data());
  state.avail_out = static_cast<uInt>(file.size());
  fuzz::require(deflate(&state, Z_FINISH) == Z_STREAM_END, "there is room for a member");
  file.resize(state.total_out);
  deflateEnd(&state);
  return file;
}

std::string zstd(std::string_view content) {
  static const std::unique_ptr<ZSTD_CCtx, decltype(&ZSTD_freeCCtx)> STATE(ZSTD_createCCtx(),
                                                                          ZSTD_freeCCtx);
  ZSTD_CCtx_setParameter(STATE.get(), ZSTD_c_checksumFlag, 1);
  std::string file(ZSTD_compressBound(content.size()), '\0');
  file.resize(
      ZSTD_compress2(STATE.get(), file.data(), file.size(), content.data(), content.size()));
  return file;
}

// A file of members, and the bytes of file and content up to the end of each.
struct file_t {
  std::string bytes;
  std::vector<std::pair<std::size_t, std::size_t>> ends;
};

file_t fileOf(bool is_gzip, std::string_view content, std::size_t members) {
  file_t file;
  std::size_t begin = 0;
  for (std::size_t i = 1; i <= members; ++i) {
    const std::size_t end = content.size() * i / members;
    const std::string_view part = content.substr(begin, end - begin);
    file.bytes += is_gzip ? gzip(part) : zstd(part);
    file.ends.emplace_back(file.bytes.size(), end);
    begin = end;
  }
  return file;
}

void checkCompressed(const file_t& file, const std::string& content, std::size_t place,
                     std::uint8_t flips) {
  fuzz::require(read(file.bytes) == reading_t{content, false}, "the content comes back");
  const std::size_t at = MAGIC + place % (file.bytes.size() - MAGIC);
  std::string other = file.bytes;
  if (flips != 0) {
    other[at] = static_cast<char>(other[at] ^ flips);
    const reading_t reading = read(other);
    fuzz::require(reading.is_refused || reading.content == content, "damage is refused");
    fuzz::require(content.starts_with(reading.content), "damage makes up no content");
    return;
  }
  other.resize(at);
  const reading_t reading = read(other);
  const auto member = std::find_if(file.ends.begin(), file.ends.end(),
                                   [at](const auto& end) { return end.first == at; });
  fuzz::require(reading.is_refused == (member == file.ends.end()),
                "a member that is cut is refused");
  fuzz::require(reading.is_refused ? content.starts_with(reading.content)
                                   : reading.content == content.substr(0, member->second),
                "a file that is cut has the content before it");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < HEAD) return 0;
  const std::string rest(reinterpret_cast<const char*>(data) + HEAD, size - HEAD);
  if (data[0] % 3 == 2) {
    fuzz::require(read(rest) == read(rest), "a file reads the same again");
    return 0;
  }
  const file_t file = fileOf(data[0] % 3 == 0, rest, 1 + data[1] % 3);
  checkCompressed(file, rest, data[2] * 256U + data[3], data[4]);
  return 0;
}
