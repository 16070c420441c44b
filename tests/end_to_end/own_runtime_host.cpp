// A C++ host with a C++ library of its own inside, in addition to the shared one that the plug-in
// brings. The plug-in catches its own exceptions, and those of the host's links too. The arguments
// are the recorder and the codec.
//
// Exit status 0, or 1 after a line on standard error that names the check that failed.
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>

#include "tests/support/plugin_library.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {
namespace {

void verify(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "own_runtime_host: not so: " << what << '\n';
  std::exit(EXIT_FAILURE);
}

void jam(void* kind, vlt_underlying_message_t*, vlt_underlying_message_t*) {
  if (kind == nullptr) throw std::runtime_error("jam");
  throw 42;
}

void verifyCaughtJams(const PluginLibrary& library, void* plugin) {
  int number = 0;
  for (void* kind : {static_cast<void*>(nullptr), static_cast<void*>(&number)}) {
    library.setNextTowardsHost(plugin, kind, jam);
    Message passing;
    verify(library.sendBatchTowardsHost(plugin, &passing, &passing + 1) == 1, "the batch fails");
  }
}

// The recorder comes first: it throws nothing itself, so the shared C++ library has unwound nothing yet.
void runRecorder(const char* path) {
  const PluginLibrary library(path, PluginLibrary::Version::OURS,
                              PluginLibrary::RECORDER_CLASS_NAME);
  const data_t settings = mapOf("recordingFolder", text("."));
  void* const recorder =
      library.create("recorder", "chain", settings.underlying(), nullptr, nullptr);
  verify(recorder != nullptr, "the recorder is created");
  verifyCaughtJams(library, recorder);
  verify(library.destroy(recorder) == 0, "the recorder is destroyed");
}

void runCodec(const char* path) {
  const PluginLibrary library(path);
  const data_t settings = mapOf("tenantId", text("t1"));
  void* const codec = library.create("codec", "chain", settings.underlying(), nullptr, nullptr);
  verify(codec != nullptr, "the codec is created");

  Received host;
  library.setNextTowardsHost(codec, &host, Received::take);
  Message unknown = notification("tenant/subscription/inventory/1", mapOf("id", text("1")));
  verify(library.sendBatchTowardsHost(codec, &unknown, &unknown + 1) == 0, "the batch succeeds");
  verify(host.calls == 1 && host.messages.empty(), "the message is dropped");

  verifyCaughtJams(library, codec);
  verify(library.destroy(codec) == 0, "the codec is destroyed");
}

} // namespace
} // namespace com::velanto::connectivity::test

int main(int argc, char** argv) {
  if (argc != 3) return EXIT_FAILURE;
  try {
    com::velanto::connectivity::test::runRecorder(argv[1]);
    com::velanto::connectivity::test::runCodec(argv[2]);
    return EXIT_SUCCESS;
  } catch (const std::exception& e) {
    std::cerr << "own_runtime_host: " << e.what() << '\n';
    return EXIT_FAILURE;
  }
}
