#include "tests/tools/program.hpp"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/support/waiting.hpp"
#include "tests/tools/elapsed.hpp"

namespace com::velanto::connectivity::test {

namespace {

// As C wants them, a null at the end.
std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  result.reserve(texts.size() + 1);
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

// The streams of a program.
class Streams {
 public:
  Streams() { posix_spawn_file_actions_init(&actions_); }
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;
  ~Streams() { posix_spawn_file_actions_destroy(&actions_); }

  // `own`, unless it is negative, otherwise the file.
  void set(int descriptor, int own, const std::string& path, int flags) {
    if (own >= 0) {
      posix_spawn_file_actions_adddup2(&actions_, own, descriptor);
    } else {
      posix_spawn_file_actions_addopen(&actions_, descriptor, path.c_str(), flags, 0600);
    }
  }
  void setFolder(const std::string& path) {
    posix_spawn_file_actions_addchdir_np(&actions_, path.c_str());
  }
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

// By the states that the kernel shows, after the name in parentheses.
bool allThreadsSleep(pid_t process) {
  const std::filesystem::path threads = "/proc/" + std::to_string(process) + "/task";
  for (const auto& thread : std::filesystem::directory_iterator(threads)) {
    std::ifstream file(thread.path() / "stat");
    std::string line;
    std::getline(file, line);
    if (line.find(") S ") == std::string::npos) return false;
  }
  return true;
}

} // namespace

pid_t Program::start(const std::string& program, std::vector<std::string> arguments) {
  Streams streams;
  streams.set(0, in_descriptor_, folder_.write("in", input_), O_RDONLY);
  streams.set(1, out_descriptor_, out_path_, O_WRONLY | O_CREAT | O_TRUNC);
  streams.set(2, error_descriptor_, folder_.path("diagnostics"), O_WRONLY | O_CREAT | O_TRUNC);
  streams.setFolder(folder_.path(""));
  arguments.insert(arguments.begin(), program);
  std::vector<std::string> variables = environment_;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    variables.emplace_back(*variable);
  }
  pid_t child = 0;
  EXPECT_EQ(posix_spawn(&child, program.c_str(), streams.get(), nullptr, pointers(arguments).data(),
                        pointers(variables).data()),
            0);
  return child;
}

result_t Program::waitFor(pid_t child) {
  int status = 0;
  rusage usage{};
  EXPECT_EQ(wait4(child, &status, 0, &usage), child);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder_.read("out"),
          withoutElapsed(folder_.read("diagnostics")), usage.ru_maxrss};
}

void Program::awaitIdle(pid_t child, int pipe) {
  waitUntil([&] {
    int unread = 0;
    EXPECT_EQ(ioctl(pipe, FIONREAD, &unread), 0);
    return unread == 0 && allThreadsSleep(child);
  });
}

int Program::startOnTerminal(int& descriptor, const std::vector<std::string>& arguments,
                             pid_t& child) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  EXPECT_EQ(grantpt(terminal), 0);
  EXPECT_EQ(unlockpt(terminal), 0);
  descriptor = ::open(ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
  child = start(VLT_REPLAY_PATH, arguments);
  close(descriptor);
  return terminal;
}

std::string Program::shownOnTerminal(int& descriptor, const std::vector<std::string>& arguments) {
  pid_t child = 0;
  const int terminal = startOnTerminal(descriptor, arguments, child);
  std::string shown;
  char piece[1000];
  for (ssize_t size = 0; (size = read(terminal, piece, sizeof piece)) > 0;) {
    shown.append(piece, static_cast<std::size_t>(size));
  }
  close(terminal);
  EXPECT_EQ(waitFor(child).status, 0);
  return shown;
}

result_t Program::run(const std::vector<std::string>& arguments) {
  return waitFor(start(VLT_REPLAY_PATH, arguments));
}

result_t Program::runShell(const std::string& command) {
  const std::string folder = std::filesystem::path(VLT_REPLAY_PATH).parent_path();
  return waitFor(start("/bin/sh", {"-c", "PATH=" + folder + ":$PATH; " + command}));
}

std::string eventLine(const std::string& id) {
  return R"({"metadata": {"pulsarPath": "t1/sub/events/7"}, "payload": {"id": ")" + id +
         R"(", "source": {"id": "9"}, "text": "x", "time": "1970-01-01T00:00:05Z", "type": "T"}})"
         "\n";
}

std::string textlessLine(const std::string& id) {
  return R"({"metadata": {"pulsarPath": "t1/sub/events/7"}, "payload": {"id": ")" + id +
         R"(", "source": {"id": "9"}, "time": "1970-01-01T00:00:05Z", "type": "T"}})"
         "\n";
}

std::string alarmLine(const std::string& id, const std::string& severity) {
  return R"({"metadata": {"pulsarPath": "t1/sub/alarms/7"}, "payload": {"id": ")" + id +
         R"(", "source": {"id": "9"}, "text": "x", "time": "1970-01-01T00:00:05Z", "type": "T", )" +
         R"("count": 1, "status": "ACTIVE", "severity": ")" + severity + "\"}}\n";
}

std::string passingLine(const std::string& payload) { return "{\"payload\":" + payload + "}\n"; }

std::string textlessLog(const std::string& id) {
  return "<connectivity.OstroviaNotifications2Codec.replay> Error when transforming message "
         "towards host ('id' = '" +
         id + "'): Required key 'text' missing from message payload";
}

} // namespace com::velanto::connectivity::test
