// Compressed input, known by its first bytes and not by its name: gzip (1F 8B) and Zstandard
// (28 B5 2F FD), each also as several members in a row.
#ifndef VLT_TOOLS_REPLAY_INPUT_DECOMPRESSION_HPP
#define VLT_TOOLS_REPLAY_INPUT_DECOMPRESSION_HPP

#include <istream>
#include <memory>
#include <string>

namespace com::velanto::connectivity::tools {

// `raw` itself when it is not compressed, otherwise its content. Reading from the result throws
// ReplayError "NAME: reason" with EXIT_IO for damaged or truncated data; the call itself throws it
// for data compressed with xz and for text in UTF-16.
[[nodiscard]] std::unique_ptr<std::istream> decompressed(std::unique_ptr<std::istream> raw,
                                                         const std::string& name);

} // namespace com::velanto::connectivity::tools

#endif
