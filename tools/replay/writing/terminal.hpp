// Standard error on a terminal: a status line, or several, that is always the last one, and gives
// way to all other output.
#ifndef VLT_TOOLS_REPLAY_WRITING_TERMINAL_HPP
#define VLT_TOOLS_REPLAY_WRITING_TERMINAL_HPP

#include <cstddef>
#include <streambuf>
#include <string>

namespace com::velanto::connectivity::tools {

// The kind of terminal that an output leads to: none, one to be spared colours, one with them.
enum class Screen { NONE, PLAIN, COLOURED };

class Terminal final : public std::streambuf {
 public:
  // `out` must outlive this.
  explicit Terminal(std::streambuf& out) noexcept : out_(out) {}
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal() override { hide(); }

  // Shows `lines`, each of fewer than 80 columns, in place of the status lines. The last one has no
  // line end.
  void show(const std::string& lines);

 protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize count) override;
  int sync() override { return out_.pubsync(); }

 private:
  void hide();

  std::streambuf& out_;
  std::ptrdiff_t shown_ = 0; // lines
};

} // namespace com::velanto::connectivity::tools

#endif
