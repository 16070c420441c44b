// SHA-256 of texts and files.
#ifndef VLT_TOOLS_REPORT_DIGEST_HPP
#define VLT_TOOLS_REPORT_DIGEST_HPP

#include <cstdint>
#include <string>
#include <string_view>

namespace com::velanto::connectivity::tools::report {

// As a policy names it.
[[nodiscard]] std::string sha256Base64(std::string_view text);

struct file_digest_t {
  std::uint64_t size = 0; // bytes
  std::string sha256;     // in hexadecimal digits
};

// Of a file that cannot be read: no bytes, no digits.
[[nodiscard]] file_digest_t digestOf(const std::string& path);

} // namespace com::velanto::connectivity::tools::report

#endif
