#include "recorder/writer_thread.hpp"

#include <sys/prctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>
#include <limits>
#include <new>

#include "host/status.h"
#include "recorder/old_symbols.hpp"
#include "value/data_t.hpp"

namespace com::velanto::connectivity::recorder {

namespace {

using State = RecordingBuffer::State;

constexpr vlt_log_level_t FAILURE_LEVEL = 3;
constexpr std::size_t STACK_SIZE = 1U << 18U;
constexpr std::uint64_t SECOND = 1000;
constexpr unsigned TICK = 100;

std::uint64_t milliseconds() noexcept {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * SECOND +
         static_cast<std::uint64_t>(now.tv_nsec) / 1'000'000;
}

} // namespace

WriterThread::WriterThread(const configuration_t& configuration, RecordingBuffer& buffer,
                           RecordingFiles& files, const Logger& logger, void* status)
    : while_file_exists_(configuration.while_file_exists),
      stop_after_messages_(configuration.stop_after_messages != 0
                               ? configuration.stop_after_messages
                               : std::numeric_limits<std::uint64_t>::max()),
      stop_after_seconds_(configuration.stop_after_seconds),
      buffer_(buffer),
      files_(files),
      logger_(logger),
      status_(status) {}

WriterThread::~WriterThread() {
  if (isCopy()) return;
  stop();
  const RecordingBuffer::taken_t taken = buffer_.take();
  files_.lose(taken.lines); // messages that came after the shutdown
  counts_ = {taken.seen, files_.recorded(), taken.filtered, files_.lost()};
  reportStatus();
}

// ---- start and end

void WriterThread::start() noexcept {
  if (is_running_) return;
  run_ = currentRun();
  is_stopping_ = is_session_ = is_over_ = false;
  next_look_ = 0;
  buffer_.end(State::OFF);
  lookAtSwitch();
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, STACK_SIZE);
  // The host's signals are for the host's threads.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  const int error = pthread_create(&thread_, &attributes, run, this);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  pthread_attr_destroy(&attributes);
  is_running_ = error == 0;
  if (is_running_) {
    enter();
  } else {
    buffer_.end(State::CLOSED);
    reportFailure("cannot start a thread", error);
  }
}

void WriterThread::stop() noexcept {
  if (isCopy()) return;
  leave();
  end();
}

void WriterThread::end() noexcept {
  if (!is_running_) return;
  buffer_.end(State::CLOSED);
  is_stopping_ = true;
  buffer_.waker().wake();
  pthread_join(thread_, nullptr);
  is_running_ = false;
}

void* WriterThread::run(void* self) noexcept {
  prctl(PR_SET_NAME, "recorder");
  static_cast<WriterThread*>(self)->work();
  return nullptr;
}

void WriterThread::work() noexcept {
  for (bool is_last = false; !is_last;) {
    is_last = is_stopping_;
    if (!is_last) lookAtSwitch();
    settle();
    if (is_last || milliseconds() >= next_status_) reportStatus();
    if (!is_last) buffer_.waker().sleep(buffer_.state() == State::ON ? TICK : SECOND);
  }
}

// ---- sessions

void WriterThread::lookAtSwitch() noexcept {
  const std::uint64_t now = milliseconds();
  if (is_session_ && stop_after_seconds_ != 0 && now >= session_ends_) {
    buffer_.end(State::OFF);
  }
  if (is_session_ && buffer_.state() != State::ON) {
    is_session_ = false;
    is_over_ = true;
  }
  if (now < next_look_) return;
  next_look_ = now + SECOND;
  const bool is_on = while_file_exists_.empty() || access(while_file_exists_.c_str(), F_OK) == 0;
  if (!is_on) {
    if (is_session_ || is_over_) buffer_.end(State::OFF);
    is_session_ = is_over_ = false;
  } else if (!is_session_ && !is_over_) {
    is_session_ = true;
    is_full_ = false;
    session_ends_ = now + stop_after_seconds_ * SECOND;
    buffer_.begin(stop_after_messages_);
  }
}

// ---- lines

void WriterThread::settle() noexcept {
  const RecordingBuffer::taken_t taken = buffer_.take();
  if (!is_failing_) lost_before_ = files_.lost();
  try {
    write(taken);
  } catch (const DiskError& e) {
    reportFailure(e.what(), e.code());
  } catch (const std::exception& e) {
    reportFailure(e.what(), ENOMEM);
  }
  counts_ = {taken.seen, files_.recorded(), taken.filtered, files_.lost()};
}

void WriterThread::write(const RecordingBuffer::taken_t& taken) {
  const bool waits = is_failing_ && milliseconds() < next_attempt_ && !is_stopping_;
  if (waits || is_full_) return files_.lose(taken.lines);
  const bool has_work = !taken.lines.empty() || (taken.state != State::ON && files_.isUnfinished());
  if (!has_work) return;
  if (!files_.write(taken.lines)) return reportFull();
  if (taken.state != State::ON) files_.finish(taken.seen, taken.filtered);
  reportRecovery();
}

// ---- reports

void WriterThread::reportFailure(const char* what, int code) noexcept {
  next_attempt_ = milliseconds() + SECOND;
  is_failing_ = true;
  const auto kind = static_cast<std::size_t>(code) % reported_.size();
  if (reported_.test(kind)) return;
  reported_.set(kind);
  logger_.log(FAILURE_LEVEL,
              "Recording fails: %s. Messages pass on and are not recorded until it works again",
              what);
}

void WriterThread::reportRecovery() noexcept {
  if (!is_failing_) return;
  is_failing_ = false;
  try {
    const std::string lost = std::to_string(files_.lost() - lost_before_);
    logger_.log(FAILURE_LEVEL, "Recording works again; messages lost: %s", lost.c_str());
  } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch): the report is lost
  }
}

void WriterThread::reportFull() noexcept {
  is_full_ = true;
  buffer_.end(State::CLOSED);
  logger_.log(FAILURE_LEVEL, "%s",
              "Recording has ended: its files have reached the bound of maxFiles and "
              "maxFileMebibytes. Messages pass on and are not recorded");
}

void WriterThread::reportStatus() noexcept {
  if (status_ == nullptr || counts_ == reported_counts_) return;
  next_status_ = milliseconds() + SECOND;
  const auto number = [](std::uint64_t count) { return data_t(static_cast<std::int64_t>(count)); };
  try {
    map_t status;
    status.insert(data_t("seen"), number(counts_.seen));
    status.insert(data_t("recorded"), number(counts_.recorded));
    status.insert(data_t("filtered"), number(counts_.filtered));
    status.insert(data_t("lost"), number(counts_.lost));
    status.insert(data_t("file"), data_t(files_.path().c_str()));
    vlt_set_user_status_map(status_, status.table());
    reported_counts_ = counts_;
  } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): without memory, later
  }
}

} // namespace com::velanto::connectivity::recorder
