// The host as tests see it: all lines of the log, and a check after each test that the test has
// left no block.
#ifndef VLT_TESTS_SUPPORT_HOST_FIXTURE_HPP
#define VLT_TESTS_SUPPORT_HOST_FIXTURE_HPP

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

#include "standin/standin.h"

namespace com::velanto::connectivity::test {

struct log_line_t {
  std::string category;
  vlt_log_level_t level;
  std::string text;
  bool operator==(const log_line_t&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const log_line_t& line) {
  return out << line.category << " [" << line.level << "] " << line.text;
}

class HostFixture : public ::testing::Test {
 public:
  HostFixture(const HostFixture&) = delete;
  HostFixture& operator=(const HostFixture&) = delete;
  ~HostFixture() override {
    standin_fail_allocation(0);
    standin_reset_logging();
    EXPECT_EQ(standin_live_blocks_total(), live_before_) << "blocks leaked or freed twice";
  }

 protected:
  HostFixture() : live_before_(standin_live_blocks_total()) {
    standin_set_log_sink(&HostFixture::file, this);
  }

  // The lines since the last call.
  std::vector<log_line_t> takeLog() {
    const std::lock_guard lock(mutex_);
    return std::exchange(lines_, {});
  }

 private:
  static void file(void* context, const char* category, vlt_log_level_t level, const char* text) {
    auto& fixture = *static_cast<HostFixture*>(context);
    const std::lock_guard lock(fixture.mutex_);
    fixture.lines_.push_back({category, level, text});
  }

  std::int64_t live_before_;
  std::mutex mutex_;
  std::vector<log_line_t> lines_;
};

} // namespace com::velanto::connectivity::test

#endif
