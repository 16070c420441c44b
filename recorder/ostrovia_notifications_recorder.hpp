// The recorder: passes every batch on as it came, in both directions, and records the messages as
// lines of JSON in files. It is put into a chain before the codec, after it, or both.
//
//   sendBatch… ──► lines into a buffer ──► next link, with the very same range
//                          │
//                     writer thread ──► files
//
// Recording reads messages and changes nothing. On the host's thread it makes no call of the host,
// the disk or the allocator; a failure costs the record, never the message.
#ifndef VLT_RECORDER_OSTROVIA_NOTIFICATIONS_RECORDER_HPP
#define VLT_RECORDER_OSTROVIA_NOTIFICATIONS_RECORDER_HPP

#include <cstdint>
#include <span>

#include "plugin/abstract_codec.hpp"
#include "recorder/filter.hpp"
#include "recorder/library_life.hpp"
#include "recorder/recording_buffer.hpp"
#include "recorder/recording_files.hpp"
#include "recorder/writer_thread.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

class OstroviaNotificationsRecorder final : public AbstractCodec {
 public:
  // Takes a name for its files, if the folder is there, so that names follow the order of creation.
  // Throws std::runtime_error for a setting (recorder/configuration.hpp), std::bad_alloc.
  explicit OstroviaNotificationsRecorder(
      const PluginConstructorParameters::CodecConstructorParameters& params);

  // From start to shutdown it records. Neither fails: recording is no reason to stop a chain.
  void start() override { writer_.start(); }
  void shutdown() override { writer_.stop(); }

  // Without a link the batch goes nowhere. Exceptions of the link leave these calls.
  void sendBatchTowardsHost(Message* start, Message* end) override;
  void sendBatchTowardsTransport(Message* start, Message* end) override;

 private:
  OstroviaNotificationsRecorder(
      const PluginConstructorParameters::CodecConstructorParameters& params,
      const recorder::configuration_t& configuration);
  void record(std::span<const Message> messages, recorder::Direction direction,
              recorder::BatchNumber& number) noexcept;

  const std::uint64_t ways_; // of the chain; one more is the other direction
  recorder::Filter filter_;
  recorder::RecordingBuffer buffer_;
  recorder::RecordingFiles files_;
  recorder::WriterThread writer_; // last: ends before the others
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
