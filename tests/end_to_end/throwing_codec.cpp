// A plug-in whose codec may throw wherever the entry points call it, its destructor included, as
// far as a compiler can know. In the codec that is delivered some calls are known to throw nothing,
// whose entry points then need no guard, and would not show that they have lost it. Nobody loads
// this library: what it would do is read from its file.
#include "plugin/entry_points.hpp"
#include "plugin/logger.hpp"

namespace com::velanto::connectivity::test {

namespace {

volatile bool fails = false; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

[[gnu::noinline]] void mayThrow() {
  if (fails) throw 42; // NOLINT(hicpp-exception-baseclass): anything may be thrown
}

} // namespace

class ThrowingCodec final {
 public:
  explicit ThrowingCodec(const PluginConstructorParameters&) { mayThrow(); }
  ThrowingCodec(const ThrowingCodec&) = delete;
  ThrowingCodec& operator=(const ThrowingCodec&) = delete;
  // NOLINTNEXTLINE(bugprone-exception-escape,performance-noexcept-destructor): on purpose
  ~ThrowingCodec() noexcept(false) { mayThrow(); }
  // Or else the block would have to be freed when the destructor throws.
  static void* operator new(std::size_t size) { return ::operator new(size); }
  static void operator delete(void*) noexcept {}

  void setNextTowardsHost(std::unique_ptr<RemoteHostSide>) { mayThrow(); }
  void setNextTowardsTransport(std::unique_ptr<RemoteTransportSide>) { mayThrow(); }
  void start() { mayThrow(); }
  void hostReady() { mayThrow(); }
  void sendBatchTowardsHost(Message*, Message*) { mayThrow(); }
  void sendBatchTowardsTransport(Message*, Message*) { mayThrow(); }
  void shutdown() { mayThrow(); }
  [[nodiscard]] const Logger& getLogger() const noexcept { return *logger_; }

 private:
  const Logger* logger_ = nullptr; // an object would have to be destroyed on the way out
};

} // namespace com::velanto::connectivity::test

using com::velanto::connectivity::test::ThrowingCodec;

VLT_EXPORT_CODEC(ThrowingCodec);
