// A disk that fills up, for one process alone.
#ifndef VLT_TESTS_RECORDING_SMALL_DISK_HPP
#define VLT_TESTS_RECORDING_SMALL_DISK_HPP

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <fstream>
#include <string>

namespace com::velanto::connectivity::test {

// Mounts a disk of that `size` ("300k") at `folder`, which the calling process and its children alone
// see; false where the system does not allow that. A user other than root needs a name space in which
// to be root.
inline bool mountedSmallDisk(const std::string& folder, const std::string& size) {
  const std::string user = "0 " + std::to_string(geteuid()) + " 1";
  const std::string group = "0 " + std::to_string(getegid()) + " 1";
  if (unshare(CLONE_NEWNS) != 0) {
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << user;
    std::ofstream("/proc/self/gid_map") << group;
  }
  return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("recording", folder.c_str(), "tmpfs", 0, ("size=" + size).c_str()) == 0;
}

} // namespace com::velanto::connectivity::test

#endif
