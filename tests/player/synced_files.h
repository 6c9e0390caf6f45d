#pragma once

#include <sys/syscall.h>
#include <unistd.h>

#include <climits>
#include <string>
#include <vector>

namespace ostrevan {

/// What this thread has brought to the disk, by the names of that moment: nothing else shows what a power failure leaves.
inline thread_local std::vector<std::string> synced;

}  // namespace ostrevan

/// Takes the place of the C library's function in the test program.
extern "C" __attribute__((used)) inline int fsync(int file) {
    char name[PATH_MAX];
    const auto size = ::readlink(("/proc/self/fd/" + std::to_string(file)).c_str(), name, sizeof name);
    if (size > 0) ostrevan::synced.emplace_back(name, static_cast<std::size_t>(size));
    return static_cast<int>(::syscall(SYS_fsync, file));
}
