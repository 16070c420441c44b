// recording_torture SECONDS: lives of a recorded chain, one after the other, each in a process of its
// own, with traffic on two threads and small files that rotate. In turn, a life
//
//   (1) ends orderly,
//   (2) is killed at any moment,
//   (3) is killed within a write,
//   (4) fills its disk, gets room again and ends orderly.
//
// After each, the files on disk must keep the law of their numbers and stay below their bound; after
// an orderly end, the feet have seen all messages. Exit status 0, or 1 after a line with the breach.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tests/recording/chain.hpp"
#include "tests/recording/child.hpp"
#include "tests/recording/cut_writes.hpp"
#include "tests/recording/recording.hpp"
#include "tests/recording/small_disk.hpp"
#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {
namespace {

using namespace std::chrono_literals;
using clock_t = std::chrono::steady_clock;

constexpr std::uintmax_t BOUND = 4U << 20U; // of each recorder

constexpr const char* RECORDERS[] = {"before-chain", "after-chain"};

enum class End { ORDERLY, KILLED, IN_WRITE, FULL_DISK };
constexpr int ENDS = 4;

void require(bool holds, const std::string& breach) {
  if (!holds) throw std::runtime_error(breach);
}

struct figures_t {
  std::int64_t recorded = 0; // in the files that are left
  std::int64_t lost = 0;     // of feet; small disks go with their lives
  std::int64_t files = 0;
  std::int64_t left_over = 0; // bytes of lines that a kill has cut
};

// Checks the files in `folder` and returns their figures.
figures_t judge(const std::string& folder) {
  figures_t figures;
  for (const char* const name : RECORDERS) {
    const std::vector<recorded_file_t> files = readRecording(folder, name);
    const std::string breach = breachIn(files);
    require(breach.empty(), breach);
    std::uintmax_t bytes = 0;
    for (const recorded_file_t& file : files) {
      bytes += file.bytes;
      figures.left_over += static_cast<std::int64_t>(file.left_over);
    }
    require(bytes <= BOUND, std::string(name) + ": " + std::to_string(bytes) + " bytes");
    figures.recorded += recordsIn(files);
    figures.files += static_cast<std::int64_t>(files.size());
    if (!files.empty() && files.back().foot) figures.lost += files.back().foot->lost;
  }
  return figures;
}

// ---- a life

struct traffic_t {
  std::atomic<std::int64_t> towards_host = 0;
  std::atomic<std::int64_t> towards_transport = 0;
  std::atomic<std::int64_t> reached_host = 0;
  std::atomic<std::int64_t> reached_transport = 0;
  std::atomic<bool> ends = false;
};

void count(void* counter, vlt_underlying_message_t* start, vlt_underlying_message_t* end) noexcept {
  *static_cast<std::atomic<std::int64_t>*>(counter) += end - start;
}

std::vector<Message> batchOf(std::size_t size) {
  std::vector<Message> batch;
  batch.reserve(size);
  for (std::size_t i = 0; i < size; ++i) {
    // One in seven is of no kind that the codec knows.
    batch.push_back(
        notification(i % 7 == 6 ? "t/s/inventory/1" : "t/s/events/1",
                     mapOf("id", text("1"), "source", mapOf("id", text("7")), "text",
                           text(std::string(std::size_t{1} << i % 15, 'x').c_str()), "time",
                           text("2023-04-05T06:07:08.000Z"), "type", text("o6a_Test"))));
  }
  return batch;
}

// Bursts with pauses, now and then one that no disk can follow.
void sendUntilTheEnd(Chain& chain, traffic_t& traffic, std::uint64_t seed) {
  std::mt19937_64 random(seed);
  while (!traffic.ends) {
    for (auto left = random() % 50 == 0 ? 600 : random() % 10; left > 0; --left) {
      std::vector<Message> batch = batchOf(random() % 40);
      const auto size = static_cast<std::int64_t>(batch.size());
      if (random() % 3 == 0) {
        traffic.towards_transport += size;
        require(chain.sendTowardsTransport(batch), "a batch failed");
      } else {
        traffic.towards_host += size;
        require(chain.sendTowardsHost(batch), "a batch failed");
      }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1 + random() % 8));
  }
}

void live(End end, const std::string& folder, traffic_t& traffic, std::chrono::milliseconds length,
          std::uint64_t seed, const std::string& filler) {
  const plugin_libraries_t libraries;
  const data_t settings =
      recorderSettings(folder, "maxFileMebibytes", whole(1), "maxFiles", whole(4));
  Chain chain(libraries, settings, {&traffic.reached_host, count},
              {&traffic.reached_transport, count});
  std::thread other([&] { sendUntilTheEnd(chain, traffic, seed + 1); });
  std::thread clock([&] {
    std::this_thread::sleep_for(length / 2);
    if (!filler.empty()) std::filesystem::remove(filler);
    std::this_thread::sleep_for(length / 2);
    if (end == End::IN_WRITE) return dieInNextWrite();
    traffic.ends = true;
  });
  sendUntilTheEnd(chain, traffic, seed);
  other.join();
  clock.join();
  require(chain.shutdown(), "a shutdown failed");
}

void requireSeen(const std::string& folder, const char* name, std::int64_t messages) {
  const std::vector<recorded_file_t> files = readRecording(folder, name);
  require(!files.empty() && files.back().foot && !files.back().foot->next,
          std::string(name) + ": no foot at the end");
  require(files.back().foot->seen == messages,
          std::string(name) + ": " + std::to_string(messages) + " messages sent");
}

// The whole of a life that ends orderly, in its process.
void liveOrderly(End end, const std::string& folder, std::chrono::milliseconds length,
                 std::uint64_t seed, const std::string& filler) {
  traffic_t traffic;
  live(end, folder, traffic, length, seed, filler);
  require(traffic.reached_transport == traffic.towards_transport, "messages are missing");
  const figures_t figures = judge(folder);
  requireSeen(folder, RECORDERS[0], traffic.towards_host + traffic.towards_transport);
  requireSeen(folder, RECORDERS[1], traffic.reached_host + traffic.towards_transport);
  require(filler.empty() || figures.lost > 0, "the disk was not full");
}

// Leaves half a mebibyte; without this file there is room for all files of both recorders.
constexpr const char* DISK = "9m";
void fillDisk(const std::string& path) {
  std::ofstream filler(path);
  filler << std::string(std::size_t{17} << 19U, 'x');
  require(bool(filler.flush()), "no room for the filler");
}

// Returns the ID of a process that lives so long; KILLED: until somebody ends it.
pid_t startLife(End end, const std::string& folder, std::chrono::milliseconds length,
                std::uint64_t seed) {
  return startChild([=] {
    std::string filler;
    if (end == End::FULL_DISK) {
      require(mountedSmallDisk(folder, DISK), "no small disk");
      fillDisk(filler = folder + "/filler");
    }
    liveOrderly(end, folder, end == End::KILLED ? 1h : length, seed, filler);
    return 0;
  });
}

// ---- all lives

// Whether one of the last files ends within a line.
bool isCut(const std::string& folder) {
  return std::any_of(std::begin(RECORDERS), std::end(RECORDERS), [&folder](const char* name) {
    const std::vector<recorded_file_t> files = readRecording(folder, name);
    return !files.empty() && files.back().left_over > 0;
  });
}

void run(std::chrono::duration<double> length) {
  standin_set_default_log_level(2); // no line for each message that the codec drops
  const TemporaryFolder folder;
  std::mt19937_64 random(std::random_device{}());
  const clock_t::time_point start = clock_t::now();
  int lives = 0;
  figures_t all;
  const bool has_disk =
      inChild([&folder] { return mountedSmallDisk(folder.path(""), DISK) ? 0 : 1; }) == 0;
  if (!has_disk) std::cout << "torture: SKIPPED: full disk, since this system mounts none\n";
  const int ends = has_disk ? ENDS : ENDS - 1; // a full disk is the last one
  for (; clock_t::now() - start < length || lives < ends; ++lives) {
    const auto kind = static_cast<End>(lives % ends);
    const std::chrono::milliseconds life(500 + random() % 3000);
    const pid_t process = startLife(kind, folder.path(""), life, random());
    if (kind == End::KILLED) {
      std::this_thread::sleep_for(life);
      kill(process, SIGKILL);
    }
    const int ended = endOf(process);
    const bool is_killed = kind == End::KILLED || kind == End::IN_WRITE;
    require(ended == (is_killed ? -SIGKILL : 0),
            "life " + std::to_string(lives) + " ended with " + std::to_string(ended));
    require(kind != End::IN_WRITE || isCut(folder.path("")), "no line was cut");
    const figures_t figures = judge(folder.path(""));
    all.recorded += figures.recorded;
    all.lost += figures.lost;
    all.files += figures.files;
    all.left_over += figures.left_over;
  }
  require(all.recorded > 0, "nothing was recorded");
  std::cout << "torture: " << lives << " lives, " << all.files << " files and " << all.recorded
            << " records read, " << all.lost << " messages lost and counted, " << all.left_over
            << " bytes of lines cut off" << std::endl;
}

} // namespace
} // namespace com::velanto::connectivity::test

int main(int argc, char** argv) {
  try {
    com::velanto::connectivity::test::run(
        std::chrono::duration<double>(argc == 2 ? std::atof(argv[1]) : 60));
    return 0;
  } catch (const std::exception& e) {
    std::cout << "torture: " << e.what() << std::endl;
    return 1;
  }
}
