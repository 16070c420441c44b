// The files of recordings, found by their names: NAME.000001.ndjson, NAME.000002.ndjson …, also
// compressed afterwards: NAME.000001.ndjson.gz or .zst.
#ifndef VLT_TOOLS_REPLAY_INPUT_RECORDING_FILES_HPP
#define VLT_TOOLS_REPLAY_INPUT_RECORDING_FILES_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace com::velanto::connectivity::tools {

struct recording_file_t {
  std::string folder; // as in the path, with its slash; empty: the current one
  std::string name;
  std::uint64_t number = 0; // 0: not the file of a recording
  std::string path;
};

// The parts of a path that has the form of a recording's file.
[[nodiscard]] std::optional<recording_file_t> recordingFile(const std::string& path);

// The files of all recordings in `folder`, or of the one of a name, by name and number. Of a file
// that is there in several forms, the one that is not compressed. Throws ReplayError with EXIT_IO.
[[nodiscard]] std::vector<recording_file_t> recordingFilesIn(const std::string& folder);
[[nodiscard]] std::vector<recording_file_t> recordingFilesIn(const std::string& folder,
                                                             const std::string& name);

// The files that `path` means: FOLDER with one recording in it, or FOLDER/NAME. None: it names
// neither a folder nor a recording. Throws ReplayError with EXIT_USAGE when the folder has no
// recording or several.
[[nodiscard]] std::vector<recording_file_t> recordingAt(const std::string& path);

// Whether `path` means a recording without a file so far: a folder without one, or nothing in a
// folder that exists. Throws ReplayError with EXIT_IO.
[[nodiscard]] bool mayComeLater(const std::string& path);

} // namespace com::velanto::connectivity::tools

#endif
