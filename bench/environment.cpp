#include "bench/environment.hpp"

#include <benchmark/benchmark.h>
#include <gnu/libc-version.h>
#include <malloc.h>
#include <rapidjson/rapidjson.h>
#include <sys/utsname.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>

namespace com::velanto::connectivity::bench {

namespace {

std::string processor() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);) {
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  }
  return "unknown";
}

std::string caches(const benchmark::CPUInfo& cpu) {
  std::string text;
  for (const auto& cache : cpu.caches) {
    if (!text.empty()) text += ", ";
    text += 'L' + std::to_string(cache.level) + ' ' + cache.type + ' ' +
            std::to_string(cache.size / 1024) + " KiB";
  }
  return text;
}

std::string load() {
  std::array<double, 3> averages{};
  if (getloadavg(averages.data(), 3) != 3) return "unknown";
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.2f %.2f %.2f", averages[0], averages[1], averages[2]);
  return text.data();
}

std::string jsonLibraries() {
  return "nlohmann::json " + std::to_string(NLOHMANN_JSON_VERSION_MAJOR) + '.' +
         std::to_string(NLOHMANN_JSON_VERSION_MINOR) + '.' +
         std::to_string(NLOHMANN_JSON_VERSION_PATCH) +
         ", RapidJSON " RAPIDJSON_VERSION_STRING ", Boost.JSON " VLT_BENCH_BOOST_JSON_VERSION;
}

} // namespace

environment_t environment() {
  const benchmark::CPUInfo& cpu = benchmark::CPUInfo::Get();
  utsname system{};
  uname(&system);
  return {
      {"processor", processor()},
      {"processors", std::to_string(cpu.num_cpus)},
      {"caches", caches(cpu)},
      {"frequency scaling", cpu.scaling == benchmark::CPUInfo::ENABLED    ? "on"
                            : cpu.scaling == benchmark::CPUInfo::DISABLED ? "off"
                                                                          : "unknown"},
      {"load", load()},
      {"system",
       std::string(system.sysname) + ' ' + system.release + ", glibc " + gnu_get_libc_version()},
      {"compiler", VLT_BENCH_COMPILER},
      {"build", VLT_BENCH_BUILD},
      {"JSON libraries", jsonLibraries()},
  };
}

void keepHeap() noexcept {
  constexpr int MEBIBYTE = 1024 * 1024;
  mallopt(M_TRIM_THRESHOLD, 1024 * MEBIBYTE);
  mallopt(M_MMAP_THRESHOLD, 32 * MEBIBYTE); // the largest that the C library accepts
}

std::optional<std::string> reasonNotToTime() {
#if !defined(__OPTIMIZE__) || !defined(NDEBUG)
  return "this is no optimised build";
#elif defined(__SANITIZE_ADDRESS__) || defined(VLT_BENCH_INSTRUMENTED)
  return "this build is instrumented";
#else
  return std::nullopt;
#endif
}

} // namespace com::velanto::connectivity::bench
