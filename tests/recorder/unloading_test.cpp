// The built library, loaded and unloaded as a host does it, also with recordings open.
#include <dlfcn.h>
#include <gmock/gmock.h>

#include <optional>
#include <set>
#include <vector>

#include "tests/recorder/recorder_fixture.hpp"
#include "tests/support/plugin_library.hpp"

namespace com::velanto::connectivity::test {
namespace {

using ::testing::HasSubstr;
using ::testing::SizeIs;

class UnloadingTest : public HostFixture {
 protected:
  UnloadingTest() { library_.emplace(VLT_RECORDER_PATH, PluginLibrary::Version::OURS, CLASS_NAME); }

  // A recorder that has recorded a message.
  void* open() {
    const data_t settings = mapOf("recordingFolder", text(folder_.path().c_str()));
    void* const recorder =
        library_->create("before", "site", settings.underlying(), nullptr, nullptr);
    EXPECT_EQ(library_->start(recorder), 0);
    Message message = notification("t/s/events/1", data_t());
    EXPECT_EQ(library_->sendBatchTowardsHost(recorder, &message, &message + 1), 0);
    return recorder;
  }
  bool unload() {
    library_.reset();
    void* const handle = dlopen(VLT_RECORDER_PATH, RTLD_NOLOAD | RTLD_LAZY);
    if (handle != nullptr) dlclose(handle);
    return handle == nullptr;
  }

  static constexpr const char* CLASS_NAME = "OstroviaNotificationsRecorder";
  RecordingFolder folder_;
  std::optional<PluginLibrary> library_;
};

TEST_F(UnloadingTest, LibraryIsGoneAfterItsRecorders) {
  library_->destroy(open());
  EXPECT_TRUE(unload());
  EXPECT_EQ(folder_.counts(), (recorder::counts_t{1, 1, 0, 0}));
}

TEST_F(UnloadingTest, OpenRecordingEndsWithTheLibrary) {
  // Lost by the host, but no leak to report, however often the test runs.
  static auto& lost = *new std::vector<void*>;
  lost.push_back(open());
  EXPECT_NE(lost.back(), nullptr);
  EXPECT_TRUE(unload());
  EXPECT_EQ(folder_.counts(), (recorder::counts_t{1, 1, 0, 0}));
}

TEST_F(UnloadingTest, LivesOfTheLibraryContinueTheNumbers) {
  for (int i = 0; i < 20; ++i) {
    library_.emplace(VLT_RECORDER_PATH, PluginLibrary::Version::OURS, CLASS_NAME);
    library_->destroy(open());
    EXPECT_TRUE(unload());
  }
  EXPECT_THAT(folder_.recordings(), SizeIs(16));
  EXPECT_EQ(folder_.recordings().back(), "before-site.000020.ndjson");
}

TEST_F(UnloadingTest, LivesOfTheLibraryAreRunsOfTheirOwn) {
  std::set<std::string> runs;
  for (int i = 0; i < 16; ++i) {
    library_.emplace(VLT_RECORDER_PATH, PluginLibrary::Version::OURS, CLASS_NAME);
    library_->destroy(open());
    EXPECT_TRUE(unload());
  }
  for (const std::string& head : startingWith(R"({"recording":{"head":)", folder_.lines())) {
    const std::string run = head.substr(head.find(R"("run":")") + 7, 16);
    EXPECT_THAT(std::string("13579bdf"), HasSubstr(run.substr(15))) << run; // never 0
    runs.insert(run);
  }
  EXPECT_THAT(runs, SizeIs(16));
  for (const std::string& line : folder_.messages()) EXPECT_EQ(numberIn(line, "batch"), 1u);
}

} // namespace
} // namespace com::velanto::connectivity::test
