// The thread that alone touches the disk: it takes lines from the buffer and writes them to the
// files, switches recording on and off, and tells the host's log and status.
//
//   (1) look, once a second, whether recording is switched on
//   (2) take the lines that there are, and write them; on a failure they are lost
//   (3) end the file of a session that is over
//   (4) report, once a second
//   (5) sleep until the buffer is half full, or for a tenth of a second
//
// A session is the time that recording is switched on: it may end by itself after so many messages
// or seconds.
#ifndef VLT_RECORDER_WRITER_THREAD_HPP
#define VLT_RECORDER_WRITER_THREAD_HPP

#include <pthread.h>

#include <atomic>
#include <bitset>
#include <cstdint>
#include <string>

#include "plugin/logger.hpp"
#include "recorder/library_life.hpp"
#include "recorder/recording_buffer.hpp"
#include "recorder/recording_files.hpp"

namespace com::velanto::connectivity::recorder {

// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): nothing derives from it
class WriterThread final : private Guest {
 public:
  // `buffer`, `files` and `logger` must outlive it. `status` is the host's handle for the status,
  // null for none. Starts nothing.
  WriterThread(const configuration_t& configuration, RecordingBuffer& buffer, RecordingFiles& files,
               const Logger& logger, void* status);
  WriterThread(const WriterThread&) = delete;
  WriterThread& operator=(const WriterThread&) = delete;
  // Stops the thread, and reports the last counts.
  ~WriterThread();

  // Switches recording on, unless it waits for a file, and starts the thread. Without a thread,
  // which is reported, all messages are lost. Does nothing while it runs.
  void start() noexcept;
  // Writes all lines and the foot, and ends the thread. Messages after that are lost.
  void stop() noexcept;

  // Whether it was started before a fork, and this is the child: the thread is the parent's. Nothing
  // else of the recorder may be used then, since the thread may have held its lock.
  [[nodiscard]] bool isCopy() const noexcept { return run_ != 0 && run_ != currentRun(); }

 private:
  void libraryEnds() noexcept override { end(); }
  void end() noexcept;
  static void* run(void* self) noexcept;
  void work() noexcept;
  void lookAtSwitch() noexcept;
  void settle() noexcept;
  void write(const RecordingBuffer::taken_t& taken);
  void reportFailure(const char* what, int code) noexcept;
  void reportRecovery() noexcept;
  void reportFull() noexcept;
  void reportStatus() noexcept;

  const std::string while_file_exists_;
  const std::uint64_t stop_after_messages_;
  const std::uint64_t stop_after_seconds_;
  RecordingBuffer& buffer_;
  RecordingFiles& files_;
  const Logger& logger_;
  void* const status_;
  std::uint64_t run_ = 0; // in which it was started

  pthread_t thread_{};
  bool is_running_ = false;
  std::atomic<bool> is_stopping_{false};

  // Of the thread. Times in milliseconds of a clock that only goes forward.
  std::uint64_t next_look_ = 0;
  std::uint64_t next_attempt_ = 0; // at the disk, after a failure
  std::uint64_t next_status_ = 0;
  std::uint64_t session_ends_ = 0;
  bool is_session_ = false;
  bool is_over_ = false;          // the session, while it is still switched on
  bool is_full_ = false;          // and that is because of the bound
  std::uint64_t lost_before_ = 0; // the failure of now
  bool is_failing_ = false;
  std::bitset<256> reported_; // by the system's number
  counts_t counts_;
  counts_t reported_counts_;
};

} // namespace com::velanto::connectivity::recorder

#endif
