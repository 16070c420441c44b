#include "tools/replay/input/decompression.hpp"

#include <zlib.h>
#include <zstd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>
#include <streambuf>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t PIECE = std::size_t{128} << 10; // bytes to decompress at once
constexpr std::string_view GZIP = "\x1F\x8B";
constexpr std::string_view ZSTD = "\x28\xB5\x2F\xFD";

// The first bytes of files that people mistake for input, and a hint.
struct foreign_t {
  std::string_view begin;
  const char* reason;
};
constexpr std::array FOREIGN = {
    foreign_t{"\xFD\x37\x7A\x58",
              "is compressed with xz, expected gzip, Zstandard or no compression"},
    foreign_t{"\xFF\xFE", "is UTF-16, expected UTF-8"},
    foreign_t{"\xFE\xFF", "is UTF-16, expected UTF-8"}};

// A stream with some bytes of it, already read, in front.
class Source {
 public:
  Source(std::unique_ptr<std::istream> raw, std::string begin, std::string name)
      : raw_(std::move(raw)), piece_(std::move(begin)), name_(std::move(name)) {}

  // The next bytes, valid until the next call; none at the end.
  std::string_view next() {
    if (fresh_) {
      fresh_ = false;
      return piece_;
    }
    piece_.resize(PIECE);
    raw_->read(piece_.data(), static_cast<std::streamsize>(PIECE));
    if (raw_->bad()) refuse("cannot be read to its end");
    piece_.resize(static_cast<std::size_t>(raw_->gcount()));
    return piece_;
  }
  [[noreturn]] void refuse(const char* reason) const {
    throw ReplayError(EXIT_IO, name_ + ": " + reason);
  }

 private:
  std::unique_ptr<std::istream> raw_;
  std::string piece_;
  bool fresh_ = true;
  std::string name_;
};

class PieceBuffer : public std::streambuf {
 public:
  explicit PieceBuffer(Source source) : source_(std::move(source)), piece_(PIECE) {}

 protected:
  int_type underflow() override {
    const std::size_t count = fill(piece_);
    setg(piece_.data(), piece_.data(), piece_.data() + count);
    return count == 0 ? traits_type::eof() : traits_type::to_int_type(piece_.front());
  }
  // Puts the next bytes into `piece` and returns how many; 0 at the end.
  virtual std::size_t fill(std::vector<char>& piece) = 0;

  Source source_;

 private:
  std::vector<char> piece_;
};

// Not compressed after all.
class PlainBuffer final : public PieceBuffer {
 public:
  using PieceBuffer::PieceBuffer;

 protected:
  std::size_t fill(std::vector<char>& piece) override {
    const std::string_view next = source_.next();
    std::copy(next.begin(), next.end(), piece.begin());
    return next.size();
  }
};

class GzipBuffer final : public PieceBuffer {
 public:
  explicit GzipBuffer(Source source) : PieceBuffer(std::move(source)) {
    constexpr int GZIP_ONLY = 16;
    if (inflateInit2(&state_, MAX_WBITS + GZIP_ONLY) != Z_OK) throw std::bad_alloc();
  }
  GzipBuffer(const GzipBuffer&) = delete;
  GzipBuffer& operator=(const GzipBuffer&) = delete;
  ~GzipBuffer() override { inflateEnd(&state_); }

 protected:
  std::size_t fill(std::vector<char>& piece) override {
    state_.next_out = reinterpret_cast<Bytef*>(piece.data());
    state_.avail_out = static_cast<uInt>(piece.size());
    while (state_.avail_out == piece.size()) {
      if (state_.avail_in == 0 && !feed()) {
        if (within_) source_.refuse("the gzip data ends too early");
        return 0;
      }
      within_ = true;
      const int result = inflate(&state_, Z_NO_FLUSH);
      if (result == Z_STREAM_END) {
        within_ = false;
        inflateReset(&state_); // another member may follow
      } else if (result != Z_OK && result != Z_BUF_ERROR) {
        source_.refuse("the gzip data is damaged");
      }
    }
    return piece.size() - state_.avail_out;
  }

 private:
  bool feed() {
    const std::string_view next = source_.next();
    state_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(next.data()));
    state_.avail_in = static_cast<uInt>(next.size());
    return !next.empty();
  }

  z_stream state_{};
  bool within_ = false; // a member
};

class ZstdBuffer final : public PieceBuffer {
 public:
  explicit ZstdBuffer(Source source)
      : PieceBuffer(std::move(source)), state_(ZSTD_createDStream()) {
    if (!state_) throw std::bad_alloc();
  }

 protected:
  std::size_t fill(std::vector<char>& piece) override {
    ZSTD_outBuffer out{piece.data(), piece.size(), 0};
    while (out.pos == 0) {
      if (in_.pos == in_.size) {
        const std::string_view next = source_.next();
        in_ = {next.data(), next.size(), 0};
        if (next.empty()) {
          if (wanted_ != 0) source_.refuse("the Zstandard data ends too early");
          return 0;
        }
      }
      wanted_ = ZSTD_decompressStream(state_.get(), &out, &in_);
      if (ZSTD_isError(wanted_) != 0) source_.refuse("the Zstandard data is damaged");
    }
    return out.pos;
  }

 private:
  struct free_t {
    void operator()(ZSTD_DStream* state) const noexcept { ZSTD_freeDStream(state); }
  };

  std::unique_ptr<ZSTD_DStream, free_t> state_;
  ZSTD_inBuffer in_{nullptr, 0, 0};
  std::size_t wanted_ = 0; // 0: a frame is complete
};

// A stream that owns its buffer and lets its exceptions through.
class BufferStream final : public std::istream {
 public:
  explicit BufferStream(std::unique_ptr<std::streambuf> buffer)
      : std::istream(buffer.get()), buffer_(std::move(buffer)) {
    exceptions(std::ios::badbit);
  }

 private:
  std::unique_ptr<std::streambuf> buffer_;
};

} // namespace

std::unique_ptr<std::istream> decompressed(std::unique_ptr<std::istream> raw,
                                           const std::string& name) {
  // No message begins with one of these bytes, so there is no need to wait for the rest.
  constexpr std::string_view FIRST_BYTES = "\x1F\x28\xFD\xFF\xFE";
  const int first = raw->peek();
  if (first == EOF || FIRST_BYTES.find(static_cast<char>(first)) == std::string_view::npos)
    return raw;
  std::string begin(ZSTD.size(), '\0');
  raw->read(begin.data(), static_cast<std::streamsize>(begin.size()));
  begin.resize(static_cast<std::size_t>(raw->gcount()));
  const bool gzip = begin.starts_with(GZIP);
  const bool zstd = begin == ZSTD;
  const auto* const foreign = std::find_if(FOREIGN.begin(), FOREIGN.end(), [&](const foreign_t& f) {
    return begin.starts_with(f.begin);
  });
  Source source(std::move(raw), std::move(begin), name);
  if (foreign != FOREIGN.end()) source.refuse(foreign->reason);
  std::unique_ptr<std::streambuf> buffer;
  if (gzip) {
    buffer = std::make_unique<GzipBuffer>(std::move(source));
  } else if (zstd) {
    buffer = std::make_unique<ZstdBuffer>(std::move(source));
  } else {
    buffer = std::make_unique<PlainBuffer>(std::move(source));
  }
  return std::make_unique<BufferStream>(std::move(buffer));
}

} // namespace com::velanto::connectivity::tools
