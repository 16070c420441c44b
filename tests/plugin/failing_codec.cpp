// A plug-in that fails on demand, with the real entry points. Its configuration maps the name of an
// operation to its exception: "runtime_error", "integer" or "bad_alloc".
#include <functional>
#include <map>
#include <new>
#include <stdexcept>
#include <string>

#include "plugin/entry_points.hpp"
#include "tests/support/failing_operations.hpp"

namespace com::velanto::connectivity::test {

class FailingCodec final : public FailingOperations {
 public:
  explicit FailingCodec(const PluginConstructorParameters::CodecConstructorParameters& params)
      : FailingOperations(params) {
    for (const auto& [operation, failure] : params.getConfiguration()) {
      failures_[operation.get<const char*>()] = failure.get<const char*>();
    }
    FailingCodec::failIn("create");
  }
  FailingCodec(const FailingCodec&) = delete;
  FailingCodec& operator=(const FailingCodec&) = delete;
  // NOLINTNEXTLINE(bugprone-exception-escape): on purpose
  ~FailingCodec() override { FailingCodec::failIn("destroy"); }

 private:
  void failIn(const char* operation) const override {
    const auto failure = failures_.find(operation);
    if (failure == failures_.end()) return;
    if (failure->second == "runtime_error") throw std::runtime_error("boom");
    if (failure->second == "bad_alloc") throw std::bad_alloc();
    throw 42;
  }

  // Looked up by plain strings, without memory for a key.
  std::map<std::string, std::string, std::less<>> failures_;
};

} // namespace com::velanto::connectivity::test

using com::velanto::connectivity::test::FailingCodec;

VLT_EXPORT_CODEC(FailingCodec);
